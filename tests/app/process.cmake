# The program as a process: its command line.
quillix_add_gtest(process_tests ${CMAKE_CURRENT_LIST_DIR}/command_line_test.cpp)
