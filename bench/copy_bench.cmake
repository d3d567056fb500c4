# Copying of photographs against cp.
add_executable(bench_copy copy_bench.cpp)
target_link_libraries(bench_copy PRIVATE quillane_options quillane_browser bench_support)
