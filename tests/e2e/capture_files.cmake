# Capture files in the running program: fallback folders, numbered names, a
# quit during a save, the preview's rewrite and a damaged registry.
add_test(NAME e2e.capture_files
    COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/capture_files_test.py
            $<TARGET_FILE:quillix>)
set_tests_properties(e2e.capture_files PROPERTIES TIMEOUT 240 RESOURCE_LOCK x11_desktop)
