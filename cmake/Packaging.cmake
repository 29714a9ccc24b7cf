# Installs Tallyroot as its platform expects (cmake --install) and packs it
# with CPack: a Debian package on Linux, an NSIS installer on Windows.
set(TALLYROOT_APP_ID org.tallyroot.Tallyroot)
set(TALLYROOT_RELEASE_DATE 2026-11-22)
set(CPACK_PACKAGE_NAME tallyroot)
set(CPACK_PACKAGE_VENDOR "The Tallyroot developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "disk usage analyser: see where the space on your disks went")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR})
set(CPACK_STRIP_FILES ON)
# The values reach CPack as written here: the installer's script holds "\" and "${".
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
    include(WindowsInstaller)
else()
    include(LinuxInstall)
endif()
include(CPack)
