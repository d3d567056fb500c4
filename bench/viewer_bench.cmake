# The viewer: opening and its commands. See viewer_bench.cpp.
add_executable(bench_viewer viewer_bench.cpp window_watch.cpp window_watch.h)
target_link_libraries(bench_viewer PRIVATE quillane_options quillane_browser_ui bench_support
                      quillane_platform_ui quillane_resources)
add_dependencies(bench_viewer quillane-codec)
