# Widget tests of the gallery cell (drawing, hover, clicks) and its context
# menu actions, against real files, a real metadata store and a real
# screenshot library in a temporary folder, inside the virtual desktop.
add_executable(screenshot_thumbnail_test ${CMAKE_CURRENT_LIST_DIR}/screenshot_thumbnail_test.cpp)
target_link_libraries(screenshot_thumbnail_test PRIVATE quillix_core Qt6::Test)
quillix_strict_warnings(screenshot_thumbnail_test)
add_test(NAME ui.ScreenshotThumbnail COMMAND screenshot_thumbnail_test)
set_tests_properties(ui.ScreenshotThumbnail PROPERTIES TIMEOUT 180)
