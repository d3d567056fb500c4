# How often a second the preview of each dialog follows its slider.
add_executable(bench_preview preview_bench.cpp)
target_link_libraries(bench_preview PRIVATE quillane_options quillane_viewer_ui bench_support)
add_dependencies(bench_preview quillane-codec)
