# What `cmake --install` puts where, and the Debian package that CPack makes of it:
#     cmake --install build/release --prefix PLACE
#     cpack --config build/release/CPackConfig.cmake -B build/package
include(GNUInstallDirs)

# The programs lie in one folder: the editor finds the terminal beside itself.
set(programs hexlane-cli control-simulator)
if(HEXLANE_DESKTOP)
  list(APPEND programs hexlane hexlane-terminal)
endif()
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(program ${programs})
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()

install(FILES README.md CHANGELOG.md LICENSE docs/manual.md docs/wire-forms.md docs/formats.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/pictures examples DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(HEXLANE_DESKTOP)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/hexlane.desktop ${CMAKE_CURRENT_LIST_DIR}/hexlane-terminal.desktop
          DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/hexlane.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/hexlane-nc-program.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/icons/hexlane.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  foreach(size 16 24 32 48 64 128 256)
    install(FILES ${CMAKE_CURRENT_LIST_DIR}/icons/hexlane-${size}.png RENAME hexlane.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  endforeach()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME hexlane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Hexlane developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Editor for NC programs with serial lines to machine controls")
set(CPACK_PACKAGE_DESCRIPTION
    "Edits the programs that drive CNC machine tools, of any length, sends them\nto the controls over two serial lines while editing goes on, receives,\ncompares and prints them. With a command-line program for the same, and a\nsimulated control to practise with.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-dejavu-core)
include(CPack)
