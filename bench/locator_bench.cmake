# The locator against find.
add_executable(bench_locator locator_bench.cpp)
target_link_libraries(bench_locator PRIVATE quillane_options quillane_locator bench_support)
