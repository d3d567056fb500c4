# Every operation on pixels against the bare call of the library behind it.
add_executable(bench_processing processing_bench.cpp)
target_link_libraries(bench_processing PRIVATE quillane_options quillane_imaging bench_support
  OpenCV::imgproc ${QUILLANE_IMAGEQUANT})
