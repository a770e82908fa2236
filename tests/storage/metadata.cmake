# The metadata store (colour labels and events) on real sealed files, and the
# capture rename rule the gallery and the preview share.
quillix_add_gtest(metadata_tests
    ${CMAKE_CURRENT_LIST_DIR}/screenshot_metadata_store_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/../capture/capture_file_rename_test.cpp)
