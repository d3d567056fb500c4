# Compiler settings every target of the project shares.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

add_library(quillane_options INTERFACE)
target_compile_options(quillane_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  -Wcast-qual -Wformat=2 -Wundef -Werror)
# In a unity build every source is an included file, and the compiler then takes each class that
# uses a file's own names for one that others share.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(quillane_options INTERFACE -Wno-subobject-linkage)
endif()
target_compile_definitions(quillane_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_BYTEARRAY QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QUILLANE_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
  QUILLANE_VERSION_MINOR=${PROJECT_VERSION_MINOR}
  QUILLANE_VERSION_REVISION=${PROJECT_VERSION_PATCH})
if(QUILLANE_SANITIZE)
  target_compile_options(quillane_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -g1)
  target_link_options(quillane_options INTERFACE -fsanitize=address,undefined)
  target_compile_definitions(quillane_options INTERFACE QUILLANE_SANITIZED)
  # GCC's sanitizers make some harmless paths look uninitialised.
  target_compile_options(quillane_options INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-error=maybe-uninitialized>)
endif()
# A fuzzer sees how far its inputs get only in code that is built for it.
option(QUILLANE_FUZZ "Build the fuzzers (Clang)" OFF)
if(QUILLANE_FUZZ)
  target_compile_options(quillane_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(quillane_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
