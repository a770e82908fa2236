# End-to-end tests of the preview window (unsaved annotations, following its
# file, its size on a scaled screen, huge pictures) and of the gallery driven
# from the keyboard and through the accessibility bus.
foreach(name preview_window gallery_keyboard)
    add_test(NAME e2e.${name}
        COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/${name}_test.py $<TARGET_FILE:quillix>)
    set_tests_properties(e2e.${name} PROPERTIES TIMEOUT 240 RESOURCE_LOCK x11_desktop)
endforeach()
