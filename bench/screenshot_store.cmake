# bench_screenshot_store: cold scan, warm rescan and folder-event storms of
# the screenshot library on 200 full-HD screenshots.
add_executable(bench_screenshot_store ${CMAKE_CURRENT_LIST_DIR}/screenshot_store_bench.cpp)
target_link_libraries(bench_screenshot_store PRIVATE quillix_bench_support)
quillix_strict_warnings(bench_screenshot_store)
