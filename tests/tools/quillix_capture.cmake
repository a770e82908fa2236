# quillix-capture against real windows in the virtual desktop (and a second X
# server without Composite).
add_test(NAME e2e.QuillixCapture
    COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/quillix_capture_test.py
            $<TARGET_FILE:quillix-capture>)
set_tests_properties(e2e.QuillixCapture PROPERTIES TIMEOUT 240 RUN_SERIAL TRUE)
