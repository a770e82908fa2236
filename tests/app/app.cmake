quillix_add_gtest(app_tests ${CMAKE_CURRENT_LIST_DIR}/popover_placement_test.cpp)
