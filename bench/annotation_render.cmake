# bench_annotation_render: flattening a 4K selection with twenty annotations,
# four of them blur or pixelate regions.
add_executable(bench_annotation_render ${CMAKE_CURRENT_LIST_DIR}/annotation_render_bench.cpp)
target_link_libraries(bench_annotation_render PRIVATE quillix_core)
quillix_strict_warnings(bench_annotation_render)
