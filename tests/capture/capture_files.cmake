# How capture files are written: numbered names that never replace a file,
# the save folder and its fallbacks, crash safety, and rewrites that keep a
# capture the program's own; on real files under a temporary folder.
quillix_add_gtest(capture_file_tests ${CMAKE_CURRENT_LIST_DIR}/capture_file_writer_test.cpp)
