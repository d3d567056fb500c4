# Outside libraries; each is linked only by the library that wraps it.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets DBus Svg Test)
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(TurboJpeg REQUIRED IMPORTED_TARGET libturbojpeg libjpeg)
pkg_check_modules(Tiff REQUIRED IMPORTED_TARGET libtiff-4)
pkg_check_modules(OpenJpeg REQUIRED IMPORTED_TARGET libopenjp2)
pkg_check_modules(Png REQUIRED IMPORTED_TARGET libpng)
pkg_check_modules(Exiv2 REQUIRED IMPORTED_TARGET exiv2)
pkg_check_modules(Lcms REQUIRED IMPORTED_TARGET lcms2)
pkg_check_modules(Seccomp REQUIRED IMPORTED_TARGET libseccomp)
# Only their headers: the decoding process loads them itself.
pkg_check_modules(Ffmpeg REQUIRED IMPORTED_TARGET libavformat libavcodec libavutil libswscale)
pkg_check_modules(Sane REQUIRED IMPORTED_TARGET sane-backends)
find_package(GIF REQUIRED)
# Of OpenCV only what works on pixels: its readers and windows bring a hundred libraries along.
# The package with its CMake files asks for all of it, so the two are found by name.
find_path(QUILLANE_OPENCV_HEADERS opencv2/imgproc.hpp PATH_SUFFIXES opencv4 REQUIRED)
foreach(part core imgproc)
  find_library(QUILLANE_OPENCV_${part} opencv_${part} REQUIRED)
  add_library(OpenCV::${part} UNKNOWN IMPORTED)
  set_target_properties(OpenCV::${part} PROPERTIES
    IMPORTED_LOCATION ${QUILLANE_OPENCV_${part}}
    INTERFACE_INCLUDE_DIRECTORIES ${QUILLANE_OPENCV_HEADERS})
endforeach()
target_link_libraries(OpenCV::imgproc INTERFACE OpenCV::core)
find_library(QUILLANE_IMAGEQUANT imagequant REQUIRED)
