# The shell: placement, the capture start decision and the window corners
# (GoogleTest), and the delegate with its X11 services on the test desktop
# (QtTest).
quillix_add_gtest(app_tests
    ${CMAKE_CURRENT_LIST_DIR}/popover_placement_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/capture_start_gate_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/window_corners_test.cpp)

add_executable(shell_test ${CMAKE_CURRENT_LIST_DIR}/shell_test.cpp)
target_link_libraries(shell_test PRIVATE quillix_core Qt6::Test)
quillix_strict_warnings(shell_test)
add_test(NAME ui.Shell COMMAND shell_test)
# It grabs the global hotkeys and opens windows, as the end-to-end tests do.
set_tests_properties(ui.Shell PROPERTIES TIMEOUT 120 RESOURCE_LOCK x11_desktop)
