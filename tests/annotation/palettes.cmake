# Widget tests of the annotation palettes (toolbar, sidebar, colour bridge).
foreach(palette_test annotation_toolbar_test color_picker_bridge_test)
    add_executable(${palette_test} ${CMAKE_CURRENT_LIST_DIR}/${palette_test}.cpp)
    target_link_libraries(${palette_test} PRIVATE quillix_core Qt6::Test)
    quillix_strict_warnings(${palette_test})
endforeach()
add_test(NAME annotation.AnnotationToolbar COMMAND annotation_toolbar_test)
add_test(NAME annotation.ColorPickerBridge COMMAND color_picker_bridge_test)
