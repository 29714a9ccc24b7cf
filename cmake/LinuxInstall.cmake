# The Linux layout under the install prefix, and the Debian package made of it.
include(GNUInstallDirs)
set(linux_resources ${PROJECT_SOURCE_DIR}/resources/linux)
set(images ${PROJECT_BINARY_DIR}/resources/images)
set(doc ${CMAKE_INSTALL_DATADIR}/doc/tallyroot)

install(TARGETS Tallyroot tallyroot-scan RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# Launched by its lower-case name, as Linux programs are (renamed once
# installed, so that it is stripped like any target).
install(CODE "file(RENAME \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/Tallyroot\"
                          \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/tallyroot\")")

install(FILES ${linux_resources}/${TALLYROOT_APP_ID}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
# Screenshots need a web address to be shown from; without one the metainfo names none.
set(TALLYROOT_METAINFO_URLS "")
set(TALLYROOT_METAINFO_SCREENSHOTS "")
if(TALLYROOT_WEB_ADDRESS)
    set(TALLYROOT_METAINFO_URLS "  <url type=\"homepage\">${TALLYROOT_WEB_ADDRESS}</url>\n")
    set(shots "  <screenshots>\n")
    foreach(shot "results-map;The map of a scan" "results-drive;A whole disk, added up"
                 "home-screen;Drives to scan")
        list(GET shot 0 file)
        list(GET shot 1 caption)
        string(APPEND shots "    <screenshot><caption>${caption}</caption>"
                            "<image>${TALLYROOT_WEB_ADDRESS}/images/${file}.png</image></screenshot>\n")
    endforeach()
    string(APPEND shots "  </screenshots>\n")
    set(TALLYROOT_METAINFO_SCREENSHOTS "${shots}")
endif()
configure_file(${linux_resources}/${TALLYROOT_APP_ID}.metainfo.xml.in
               ${PROJECT_BINARY_DIR}/${TALLYROOT_APP_ID}.metainfo.xml @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/${TALLYROOT_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

foreach(size 16 24 32 48 64 128 256)
    install(FILES ${images}/icon-${size}.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
            RENAME ${TALLYROOT_APP_ID}.png)
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/resources/images/Tallyroot.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
        RENAME ${TALLYROOT_APP_ID}.svg)

# The man page and the changelog, compressed as Debian keeps them (no name or
# time in the gzip header, so the package comes out the same every time).
find_program(TALLYROOT_GZIP gzip REQUIRED)
foreach(page tallyroot.1 tallyroot-scan.1)
    configure_file(${linux_resources}/${page} ${PROJECT_BINARY_DIR}/man/${page} @ONLY)
endforeach()
set(packed ${PROJECT_BINARY_DIR}/compressed)
file(MAKE_DIRECTORY ${packed})
set(compressed)
foreach(source ${PROJECT_BINARY_DIR}/man/tallyroot.1 ${PROJECT_BINARY_DIR}/man/tallyroot-scan.1
               ${linux_resources}/changelog)
    get_filename_component(name ${source} NAME)
    set(output ${packed}/${name}.gz)
    add_custom_command(OUTPUT ${output}
        COMMAND ${TALLYROOT_GZIP} -9nc ${source} > ${output}
        DEPENDS ${source} VERBATIM)
    list(APPEND compressed ${output})
endforeach()
add_custom_target(linux_docs ALL DEPENDS ${compressed})
install(FILES ${packed}/tallyroot.1.gz ${packed}/tallyroot-scan.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${packed}/changelog.gz ${linux_resources}/copyright
              ${PROJECT_SOURCE_DIR}/docs/user-guide.html
        DESTINATION ${doc})

set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Tallyroot developers <developers@tallyroot.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGE_DESCRIPTION
    "Tallyroot walks a whole drive, a special folder or any folder and shows where\n"
    "the space went: a folder tree with sizes, space on disk and shares of the\n"
    "parent, the ten largest children of the folder chosen, the 20 biggest files,\n"
    "the files grouped by type, and a map of the whole tree. tallyroot-scan runs\n"
    "the same scan from a terminal.")
string(JOIN "" CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
