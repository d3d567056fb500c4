# Comment slots against the metadata library alone.
add_executable(comments_bench comments_bench.cpp camera_jpeg.cpp camera_jpeg.h)
target_link_libraries(comments_bench PRIVATE quillane_options quillane_imaging PkgConfig::Exiv2)
