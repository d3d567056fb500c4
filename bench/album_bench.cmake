# The album window with many files. See album_bench.cpp.
add_executable(bench_album album_bench.cpp window_watch.cpp window_watch.h)
target_link_libraries(bench_album PRIVATE quillane_options quillane_browser_ui bench_support
                      quillane_platform_ui quillane_resources)
add_dependencies(bench_album quillane-codec)
