# A search over a folder of tagged pictures.
add_executable(bench_search search_bench.cpp camera_jpeg.cpp camera_jpeg.h)
target_link_libraries(bench_search PRIVATE quillane_options quillane_browser bench_support
                      PkgConfig::Exiv2)
add_dependencies(bench_search quillane-codec)
