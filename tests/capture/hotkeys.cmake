# Global hotkeys against the real X server of the test desktop: the manager,
# the X11 grab back end, and presses sent with xdotool. Needs a
# QGuiApplication on xcb, so it has its own main().
add_executable(hot_key_manager_test
    ${CMAKE_CURRENT_LIST_DIR}/hot_key_manager_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/../support/test_support.cpp)
target_include_directories(hot_key_manager_test PRIVATE ${CMAKE_CURRENT_LIST_DIR}/..)
target_compile_definitions(hot_key_manager_test PRIVATE
    QUILLIX_TESTS_DIR="${CMAKE_CURRENT_LIST_DIR}/..")
target_link_libraries(hot_key_manager_test PRIVATE quillix_core GTest::gtest Qt6::Test)
quillix_strict_warnings(hot_key_manager_test)
# Grabs and synthetic key presses are global to the X server: tests that use
# the keyboard must not run at the same time.
gtest_discover_tests(hot_key_manager_test DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES RESOURCE_LOCK x11_keyboard TIMEOUT 60)
