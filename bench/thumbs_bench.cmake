# What benchmarks of pictures share, and those of thumbnails and of the header scan.
add_library(bench_support STATIC bare_jpeg.cpp bare_jpeg.h bench_support.cpp bench_support.h)
target_include_directories(bench_support PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(bench_support PUBLIC quillane_core Qt6::Gui
  PRIVATE quillane_options PkgConfig::TurboJpeg)
add_executable(bench_thumbs thumbs_bench.cpp)
target_link_libraries(bench_thumbs PRIVATE quillane_options quillane_imaging bench_support
  PkgConfig::TurboJpeg)
add_executable(bench_scan scan_bench.cpp)
target_link_libraries(bench_scan PRIVATE quillane_options quillane_imaging bench_support)
