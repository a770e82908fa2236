# The program as a process, end to end: held hotkeys, a second copy, the
# command line, notification attachments and keyboard-layout switches. It
# holds keys and switches the server's layout, so nothing else may use the
# keyboard meanwhile.
add_test(NAME e2e.process
    COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/process_test.py $<TARGET_FILE:quillix>)
set_tests_properties(e2e.process PROPERTIES TIMEOUT 240
    RESOURCE_LOCK "x11_desktop;x11_keyboard")
