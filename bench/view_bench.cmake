# Scrolling and zooming of very large pictures; see view_bench.cpp.
add_executable(bench_view view_bench.cpp)
target_link_libraries(bench_view PRIVATE quillane_options quillane_widgets_ui bench_support)
