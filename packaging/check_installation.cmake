# Installs the built program into a folder of the build tree and looks at what lies there.
#   BINARY_DIR  the build tree
#   ID          the program's reverse-DNS name
set(prefix ${BINARY_DIR}/installation-check)
file(REMOVE_RECURSE ${prefix})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${prefix}
                RESULT_VARIABLE result OUTPUT_QUIET)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "The installation failed: ${result}")
endif()

set(desktop share/applications/${ID}.desktop)
set(metainfo share/metainfo/${ID}.metainfo.xml)
foreach(file bin/quillane libexec/quillane/quillane-codec libexec/quillane/quillane-scan
             share/doc/quillane/help/index.html
             share/doc/quillane/samples/flower.jpg ${desktop} ${metainfo}
             share/icons/hicolor/scalable/apps/${ID}.svg)
  if(NOT EXISTS ${prefix}/${file})
    message(SEND_ERROR "${file} is missing")
  endif()
endforeach()

foreach(file ${desktop} ${metainfo})
  file(READ ${prefix}/${file} text)
  if(NOT text MATCHES "${ID}")
    message(SEND_ERROR "${file} does not name ${ID}")
  endif()
endforeach()

# The desktop's own judges, where they are installed.
find_program(DESKTOP_FILE_VALIDATE desktop-file-validate)
find_program(APPSTREAMCLI appstreamcli)
function(judge)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE verdict OUTPUT_VARIABLE words
                  ERROR_VARIABLE words)
  if(NOT verdict EQUAL 0)
    message(SEND_ERROR "${words}")
  endif()
endfunction()
if(DESKTOP_FILE_VALIDATE)
  judge(${DESKTOP_FILE_VALIDATE} ${prefix}/${desktop})
endif()
if(APPSTREAMCLI)
  judge(${APPSTREAMCLI} validate --no-net ${prefix}/${metainfo})
endif()
file(REMOVE_RECURSE ${prefix})
