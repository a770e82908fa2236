# End-to-end tests: the real program in the virtual desktop, driven from outside.
foreach(name shell shell_area_capture capture area_capture gallery)
    add_test(NAME e2e.${name}
        COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/${name}_test.py $<TARGET_FILE:quillix>)
    set_tests_properties(e2e.${name} PROPERTIES TIMEOUT 180 RESOURCE_LOCK x11_desktop)
endforeach()
