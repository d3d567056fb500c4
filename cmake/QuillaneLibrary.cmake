# quillane_library(<folder> [UI] [AUTOMOC] SOURCES ... USES ... LIBRARIES ...)
#
# Makes quillane_<folder> (or, with UI, quillane_<folder>_ui from <folder>/ui) as a static
# library with an include root of its own: a link in the build tree that holds nothing but
# this folder. So `#include "core/failure.h"` compiles only where quillane_core is linked,
# and a layer that reaches upwards does not build.
#   USES       libraries of the project, visible to whoever links this one
#   LIBRARIES  outside libraries that only this one's sources see
function(quillane_library folder)
  cmake_parse_arguments(ARG "UI;AUTOMOC" "" "SOURCES;USES;LIBRARIES" ${ARGN})
  set(target quillane_${folder})
  set(inner ${folder})
  if(ARG_UI)
    set(target quillane_${folder}_ui)
    set(inner ${folder}/ui)
  endif()
  if(NOT ARG_SOURCES)
    if(ARG_UI)
      file(GLOB ARG_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${inner}/*.cpp
           ${CMAKE_SOURCE_DIR}/${inner}/*.h ${CMAKE_SOURCE_DIR}/${inner}/*.ui)
    else()
      file(GLOB ARG_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${inner}/*.cpp
           ${CMAKE_SOURCE_DIR}/${inner}/*.h)
    endif()
  endif()

  set(root ${CMAKE_BINARY_DIR}/roots/${target})
  get_filename_component(holder ${root}/${inner} DIRECTORY)
  file(MAKE_DIRECTORY ${holder})
  if(NOT EXISTS ${root}/${inner})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${inner} ${root}/${inner} SYMBOLIC)
  endif()

  if(NOT ARG_SOURCES MATCHES "\\.cpp")
    file(WRITE ${CMAKE_BINARY_DIR}/empty.cpp "")
    list(APPEND ARG_SOURCES ${CMAKE_BINARY_DIR}/empty.cpp)
  endif()
  add_library(${target} STATIC ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC ${root})
  target_link_libraries(${target}
    PUBLIC ${ARG_USES}
    PRIVATE quillane_options ${ARG_LIBRARIES})
  if(ARG_AUTOMOC OR ARG_UI)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    # Ninja does not know that moc has to look at a header that was not there before.
    set(seen ${CMAKE_CURRENT_BINARY_DIR}/${target}_sources.txt)
    set(before)
    if(EXISTS ${seen})
      file(READ ${seen} before)
    endif()
    if(NOT before STREQUAL "${ARG_SOURCES}")
      file(REMOVE ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/timestamp)
      file(WRITE ${seen} "${ARG_SOURCES}")
    endif()
  endif()
endfunction()
