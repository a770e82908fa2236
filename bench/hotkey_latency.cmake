# bench_hotkey_latency: the area hotkey to the editor's overlay on screen
# (with nothing of ours shown, and with the popover open) and a cell click to
# the preview window, measured from outside the real program. By hand only,
# inside the virtual desktop:
#   scripts/with-desktop cmake --build build --target bench_hotkey_latency
add_custom_target(bench_hotkey_latency
    COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/hotkey_latency.py $<TARGET_FILE:quillix>
    DEPENDS quillix
    USES_TERMINAL
    VERBATIM)
