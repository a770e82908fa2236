# The pill under the gallery popover: buttons and the trash drop target.
add_executable(pill_panel_test ${CMAKE_CURRENT_LIST_DIR}/pill_panel_test.cpp)
target_link_libraries(pill_panel_test PRIVATE quillix_core Qt6::Test)
quillix_strict_warnings(pill_panel_test)
add_test(NAME ui.PillPanel COMMAND pill_panel_test)
