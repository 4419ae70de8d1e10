# The Debian package, made by CPack ("./package" at the root of the project).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vexaword)
set(CPACK_PACKAGE_CONTACT "The Vexa Word developers <developers@vexa.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "starts the manuscript of a crystallographic article from a CIF")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME vexaword)
set(CPACK_DEBIAN_RUNTIME_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://www.vexa.example/")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
"Vexa Word takes a CIF, from disk, from the Protein Data Bank or from a
small-angle-scattering data bank, a journal and a kind of article, and opens a
manuscript in the word processor: title, authors and addresses are in place,
the sections wait to be filled in, and every data table is filled from the CIF.
.
The package has quillet, too, which prints the article as HTML without a window
and draws figures of the structure or the data.")
# Libraries are found in the programs; LibreOffice is what the manuscript opens in.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libreoffice-writer, fonts-liberation, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, shared-mime-info")

# Policy wants these compressed, without the time in them.
find_program(GZIP gzip REQUIRED)
set(debian_changelog "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz")
add_custom_command(OUTPUT "${debian_changelog}"
    COMMAND ${CMAKE_COMMAND} -E copy "${CMAKE_CURRENT_LIST_DIR}/changelog" changelog
    COMMAND ${GZIP} -9nf changelog
    DEPENDS "${CMAKE_CURRENT_LIST_DIR}/changelog"
    VERBATIM)
add_custom_target(debian_changelog ALL DEPENDS "${debian_changelog}")
install(FILES "${CMAKE_CURRENT_LIST_DIR}/copyright" "${debian_changelog}"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT runtime)
install(FILES "${CMAKE_CURRENT_LIST_DIR}/lintian-overrides" RENAME vexaword
    DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" COMPONENT runtime)

include(CPack)
