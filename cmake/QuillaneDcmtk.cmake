# DCMTK's exported targets name files its -dev package does not ship everywhere, so the
# libraries are linked by name.
function(quillane_link_dcmtk target)
  find_path(DCMTK_INCLUDE dcmtk/dcmdata/dctk.h REQUIRED)
  target_include_directories(${target} SYSTEM PRIVATE ${DCMTK_INCLUDE})
  foreach(part dcmjpls dcmtkcharls dcmjpeg ijg8 ijg12 ijg16 dcmimage dcmimgle dcmdata oflog ofstd)
    find_library(DCMTK_${part} ${part})
    if(DCMTK_${part})
      target_link_libraries(${target} PRIVATE ${DCMTK_${part}})
    endif()
  endforeach()
endfunction()

