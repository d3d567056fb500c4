# The whole program under load; see window_bench.cpp and run.
add_executable(bench_window window_bench.cpp window_watch.cpp window_watch.h)
target_link_libraries(bench_window PRIVATE quillane_options quillane_browser_ui bench_support
                      quillane_platform_ui quillane_resources PkgConfig::Exiv2)
add_dependencies(bench_window quillane-codec)
