# bench_gallery_popover: opening the gallery popover over 200 listed captures
# and filtering them per keystroke of a search. Run in the virtual desktop:
# scripts/with-desktop build/bin/bench_gallery_popover
add_executable(bench_gallery_popover ${CMAKE_CURRENT_LIST_DIR}/gallery_popover_bench.cpp)
target_link_libraries(bench_gallery_popover PRIVATE quillix_bench_support)
quillix_strict_warnings(bench_gallery_popover)
