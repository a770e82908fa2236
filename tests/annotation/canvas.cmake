# The annotation document, the flattening renderer and the drawing canvas.
quillix_add_gtest(annotation_state_tests ${CMAKE_CURRENT_LIST_DIR}/annotation_state_test.cpp)
quillix_add_gtest(annotation_tool_tests ${CMAKE_CURRENT_LIST_DIR}/annotation_tool_test.cpp)

# The renderer draws text, so it needs a QGuiApplication of its own.
add_executable(annotated_image_renderer_tests
    ${CMAKE_CURRENT_LIST_DIR}/annotated_image_renderer_test.cpp)
target_link_libraries(annotated_image_renderer_tests PRIVATE quillix_core GTest::gtest Qt6::Test)
quillix_strict_warnings(annotated_image_renderer_tests)
gtest_discover_tests(annotated_image_renderer_tests DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)

add_executable(annotation_canvas_view_test ${CMAKE_CURRENT_LIST_DIR}/annotation_canvas_view_test.cpp)
target_link_libraries(annotation_canvas_view_test PRIVATE quillix_core Qt6::Test)
quillix_strict_warnings(annotation_canvas_view_test)
add_test(NAME ui.AnnotationCanvasView COMMAND annotation_canvas_view_test)
