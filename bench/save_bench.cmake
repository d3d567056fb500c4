# Loading, saving and tagging of photographs.
add_executable(bench_save save_bench.cpp)
target_link_libraries(bench_save PRIVATE quillane_options quillane_metadata bench_support
  PkgConfig::TurboJpeg)
