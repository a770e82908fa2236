# The preview window: the image-space geometry and byte counts (GoogleTest),
# the window with real files, a real metadata store and real playback on the
# virtual desktop (QtTest).
quillix_add_gtest(preview_image_space_tests ${CMAKE_CURRENT_LIST_DIR}/preview_image_space_test.cpp)

foreach(preview_test screenshot_preview_view_test video_player_view_test)
    add_executable(${preview_test} ${CMAKE_CURRENT_LIST_DIR}/${preview_test}.cpp)
    target_link_libraries(${preview_test} PRIVATE quillix_core Qt6::Test)
    quillix_strict_warnings(${preview_test})
endforeach()
add_test(NAME annotation.PreviewWindow COMMAND screenshot_preview_view_test)
add_test(NAME annotation.PreviewVideoPlayer COMMAND video_player_view_test)
set_tests_properties(annotation.PreviewWindow annotation.PreviewVideoPlayer PROPERTIES TIMEOUT 120)
# Qt Multimedia unloads its GStreamer plugin at exit, leaving a few hundred
# bytes the plugin kept for the process's life in an unloaded module, where no
# suppression can name them; the player test keeps every other sanitizer check.
set_tests_properties(annotation.PreviewVideoPlayer PROPERTIES
    ENVIRONMENT "ASAN_OPTIONS=detect_leaks=0:abort_on_error=0:detect_stack_use_after_return=1")
