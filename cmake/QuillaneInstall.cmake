# What an installation consists of. The program looks for its worker and its manual relative to
# itself (platform/desktop/desktop_places.cpp), so these folders are fixed below the prefix.
set(QUILLANE_ID io.github.quillane.Quillane)
set(packaging ${CMAKE_SOURCE_DIR}/packaging)

install(TARGETS quillane RUNTIME DESTINATION bin)
install(TARGETS quillane-codec quillane-scan RUNTIME DESTINATION libexec/quillane)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/resources/help/ DESTINATION share/doc/quillane/help
        FILES_MATCHING PATTERN *.html PATTERN *.css PATTERN *.png)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/samples/ DESTINATION share/doc/quillane/samples)
install(FILES ${CMAKE_SOURCE_DIR}/README.md ${CMAKE_SOURCE_DIR}/CHANGELOG.md
        DESTINATION share/doc/quillane)
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION share/doc/quillane RENAME copyright)
install(FILES ${packaging}/${QUILLANE_ID}.desktop DESTINATION share/applications)
install(FILES ${packaging}/${QUILLANE_ID}.metainfo.xml DESTINATION share/metainfo)
install(FILES ${CMAKE_SOURCE_DIR}/resources/icons/quillane.svg
        DESTINATION share/icons/hicolor/scalable/apps RENAME ${QUILLANE_ID}.svg)

# cpack -G DEB makes a Debian package; what the programs link is found by looking at them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillane)
set(CPACK_PACKAGE_CONTACT "The Quillane maintainers <help@quillane.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The icons need a plugin that nothing links.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "browse folders of photographs\n Quillane shows a folder as thumbnails or a list beside a\n preview with what the camera wrote, where the picture was taken and your own notes.")
include(CPack)

if(QUILLANE_TESTS)
  add_test(NAME installation
           COMMAND ${CMAKE_COMMAND} -D BINARY_DIR=${CMAKE_BINARY_DIR} -D ID=${QUILLANE_ID}
                   -P ${packaging}/check_installation.cmake)
endif()
