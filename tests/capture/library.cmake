# The screenshot library (the gallery's model of capture files) and the
# FFmpeg video thumbnails it uses, against real files, real FFmpeg and the
# real freedesktop trash under a temporary folder.
quillix_add_gtest(screenshot_library_tests
    ${CMAKE_CURRENT_LIST_DIR}/screenshot_store_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/../platform/ffmpeg_video_frame_reader_test.cpp)
