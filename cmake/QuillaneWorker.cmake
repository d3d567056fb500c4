# What the decoding process is made of, as a library: its program, a program of the tests that
# misbehaves on purpose, and the benchmark are made from it.
file(GLOB worker_library_sources CONFIGURE_DEPENDS
     ${CMAKE_SOURCE_DIR}/imaging/worker_main/service/*.cpp
     ${CMAKE_SOURCE_DIR}/imaging/worker_main/service/*.h
     ${CMAKE_SOURCE_DIR}/imaging/worker_main/codecs/*.cpp
     ${CMAKE_SOURCE_DIR}/imaging/worker_main/codecs/*.h)
add_library(quillane_worker STATIC ${worker_library_sources})
# Only the headers of quillane_imaging are used here: its libraries would take longer to load
# than a small picture takes to decode.
target_include_directories(quillane_worker PUBLIC ${CMAKE_BINARY_DIR}/roots/quillane_imaging)
# The same for Qt's pictures: headers that name them, and nothing that is linked.
target_include_directories(quillane_worker SYSTEM PRIVATE
  $<TARGET_PROPERTY:Qt6::Gui,INTERFACE_INCLUDE_DIRECTORIES>)
target_include_directories(quillane_worker SYSTEM PRIVATE ${Ffmpeg_INCLUDE_DIRS})
target_link_libraries(quillane_worker
  PUBLIC quillane_core
  PRIVATE quillane_options PkgConfig::Tiff PkgConfig::OpenJpeg PkgConfig::TurboJpeg
          PkgConfig::Seccomp ${CMAKE_DL_LIBS})
quillane_link_dcmtk(quillane_worker)

# Leaves out of a program what its link line names and it does not use.
function(quillane_worker_program target)
  target_link_libraries(${target} PRIVATE quillane_options quillane_worker)
  target_link_options(${target} PRIVATE -Wl,--as-needed)
endfunction()
quillane_worker_program(quillane-codec)

if(QUILLANE_TESTS)
  file(GLOB bad_worker_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/imaging/bad_worker/*.cpp)
  add_executable(quillane-bad-codec ${bad_worker_sources})
  quillane_worker_program(quillane-bad-codec)
  # One that was taken over and tries to get out.
  add_executable(quillane-escaping-codec ${CMAKE_SOURCE_DIR}/tests/imaging/escaping_worker/main.cpp)
  quillane_worker_program(quillane-escaping-codec)
endif()
