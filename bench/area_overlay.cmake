# bench_area_overlay: start() to the frozen screen painted on the overlay (and
# to the X server's MapNotify), and Return to the PNG on disk.
add_executable(bench_area_overlay ${CMAKE_CURRENT_LIST_DIR}/area_overlay_bench.cpp)
set_target_properties(bench_area_overlay PROPERTIES AUTORCC ON)
target_link_libraries(bench_area_overlay PRIVATE quillix_bench_support Qt6::Test)
quillix_strict_warnings(bench_area_overlay)
