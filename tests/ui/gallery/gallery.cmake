# The gallery popover: its filter logic (GoogleTest) and the view over a real
# library and metadata store (QtTest, in the virtual desktop).
quillix_add_gtest(gallery_filter_tests ${CMAKE_CURRENT_LIST_DIR}/gallery_filter_test.cpp)

add_executable(menu_bar_view_test ${CMAKE_CURRENT_LIST_DIR}/menu_bar_view_test.cpp)
target_link_libraries(menu_bar_view_test PRIVATE quillix_core Qt6::Test)
quillix_strict_warnings(menu_bar_view_test)
add_test(NAME ui.MenuBarView COMMAND menu_bar_view_test)
