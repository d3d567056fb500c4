# The whole program under load; see window_bench.cpp and window.
add_executable(bench_window window_bench.cpp)
target_link_libraries(bench_window PRIVATE quillane_options quillane_browser_ui
                      quillane_platform_ui quillane_resources)
add_dependencies(bench_window quillane-codec)
