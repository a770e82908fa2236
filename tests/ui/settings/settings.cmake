# The key label following the X server's keyboard layout while the program
# runs. It switches the server's layout, so nothing else may use the keyboard
# meanwhile.
add_executable(shortcut_view_layout_test ${CMAKE_CURRENT_LIST_DIR}/shortcut_view_layout_test.cpp)
target_link_libraries(shortcut_view_layout_test PRIVATE quillix_core Qt6::Test)
quillix_strict_warnings(shortcut_view_layout_test)
add_test(NAME ui.ShortcutViewFollowsTheLayout COMMAND shortcut_view_layout_test)
set_tests_properties(ui.ShortcutViewFollowsTheLayout PROPERTIES RESOURCE_LOCK x11_keyboard)
