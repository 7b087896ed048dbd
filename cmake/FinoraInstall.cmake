# A freedesktop installation under the prefix (cmake --install), and a Debian package of the
# same files (cpack -G DEB).
include(GNUInstallDirs)

set(FINORA_TIPS_DIR ${CMAKE_INSTALL_FULL_DATADIR}/finora)
install(TARGETS finora-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
set(FINORA_MAN_PAGES finora-cli.1)
if(TARGET finora)
  install(TARGETS finora RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  # The program looks for its tips in ../share/finora beside its own folder.
  install(FILES data/tips.txt DESTINATION ${CMAKE_INSTALL_DATADIR}/finora)
  install(FILES data/${FINORA_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  configure_file(data/${FINORA_APP_ID}.metainfo.xml.in ${PROJECT_BINARY_DIR}/data/${FINORA_APP_ID}.metainfo.xml @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/data/${FINORA_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES data/icons/${FINORA_APP_ID}.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  install(DIRECTORY data/icons/hicolor/ DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  list(APPEND FINORA_MAN_PAGES finora.1)
endif()
# The file types belong to the files, whichever of the programs is installed.
install(FILES data/${FINORA_APP_ID}.mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
        RENAME ${FINORA_APP_ID}.xml)
# Man pages and the changelog are installed compressed, as Debian keeps them: gzip -9n, with no
# name or time inside, so the same sources give the same bytes.
set(FINORA_GZIPPED)
function(finora_install_gzipped source destination)
  get_filename_component(name ${source} NAME)
  configure_file(${source}.in ${PROJECT_BINARY_DIR}/data/${name} @ONLY)
  set(gz ${PROJECT_BINARY_DIR}/data/${name}.gz)
  add_custom_command(OUTPUT ${gz}
                     COMMAND gzip -9n -c ${PROJECT_BINARY_DIR}/data/${name} > ${gz}
                     DEPENDS ${PROJECT_BINARY_DIR}/data/${name} VERBATIM)
  install(FILES ${gz} DESTINATION ${destination})
  set(FINORA_GZIPPED ${FINORA_GZIPPED} ${gz} PARENT_SCOPE)
endfunction()
foreach(page IN LISTS FINORA_MAN_PAGES)
  finora_install_gzipped(data/${page} ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
finora_install_gzipped(data/changelog ${CMAKE_INSTALL_DATADIR}/doc/finora)
add_custom_target(finora_gzipped ALL DEPENDS ${FINORA_GZIPPED})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/finora RENAME copyright)

set(CPACK_PACKAGE_NAME finora)
set(CPACK_PACKAGE_VENDOR "The Finora developers")
set(CPACK_PACKAGE_CONTACT "The Finora developers <finora@example.org>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://finora.example.org/)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "income and expense ledger of a household or a small business")
# The long description; the summary above is its first line.
set(CPACK_PACKAGE_DESCRIPTION "Finora keeps the income and expense of a household or a small business in
one .fnr file: filters, word search, a printed report, a yearly chart, a
cash summary per currency, backups and a password lock. The interface is
in Bulgarian. finora-cli reads and writes the same ledgers from scripts and
makes their lists, reports and charts as CSV, PDF and PNG.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
# The libraries the programs link, as dpkg-shlibdeps finds them; Qt's platform plugins, which
# are opened at run time, come with libqt6gui6 on Debian.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-liberation2, xdg-utils, qt6-translations-l10n")
include(CPack)
