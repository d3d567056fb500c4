# What decoding in the process of its own costs over decoding in the program.
add_executable(bench_worker worker_bench.cpp)
target_link_libraries(bench_worker PRIVATE quillane_options quillane_imaging quillane_worker)
add_dependencies(bench_worker quillane-codec)
