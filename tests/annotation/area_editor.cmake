# The area editor: the selection geometry (GoogleTest) and the editor itself
# on the real X server, at scale 1 and 2 (QtTest).
quillix_add_gtest(area_selection_geometry_tests
    ${CMAKE_CURRENT_LIST_DIR}/area_selection_geometry_test.cpp)

add_executable(annotation_overlay_controller_test
    ${CMAKE_CURRENT_LIST_DIR}/annotation_overlay_controller_test.cpp)
set_target_properties(annotation_overlay_controller_test PROPERTIES AUTOMOC ON AUTORCC ON)
target_link_libraries(annotation_overlay_controller_test PRIVATE quillix_core Qt6::Test)
quillix_strict_warnings(annotation_overlay_controller_test)
add_test(NAME ui.AnnotationOverlayController COMMAND annotation_overlay_controller_test)
add_test(NAME ui.AnnotationOverlayControllerScale2 COMMAND annotation_overlay_controller_test)
set_tests_properties(ui.AnnotationOverlayControllerScale2 PROPERTIES ENVIRONMENT QT_SCALE_FACTOR=2)
set_tests_properties(ui.AnnotationOverlayController ui.AnnotationOverlayControllerScale2
    PROPERTIES TIMEOUT 60)
