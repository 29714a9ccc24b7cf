# The Windows layout (every file beside the programs, as in the portable zip)
# and the NSIS installer made of it: per user without administrator rights,
# for all users with them, a Start-menu entry, an uninstaller, and /S for a
# silent install.
set(bin ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
install(TARGETS Tallyroot tallyroot-scan RUNTIME DESTINATION .)
set(runtime ${bin}/Qt6Core.dll ${bin}/Qt6Gui.dll ${bin}/Qt6Widgets.dll ${bin}/user-guide.html)
foreach(path IN LISTS TALLYROOT_MINGW_RUNTIME)
    get_filename_component(dll ${path} NAME)
    list(APPEND runtime ${bin}/${dll})
endforeach()
install(FILES ${runtime} DESTINATION .)
foreach(folder IN LISTS TALLYROOT_QT_PLUGIN_FOLDERS)
    install(DIRECTORY ${bin}/${folder} DESTINATION .)
endforeach()

set(icon ${PROJECT_BINARY_DIR}/resources/images/DiskUsage.ico)
set(CPACK_GENERATOR NSIS)
set(CPACK_PACKAGE_FILE_NAME Tallyroot-${PROJECT_VERSION}-windows-x64-setup)
set(CPACK_PACKAGE_INSTALL_DIRECTORY Tallyroot)
set(CPACK_PACKAGE_EXECUTABLES Tallyroot Tallyroot)
set(CPACK_NSIS_EXECUTABLES_DIRECTORY .)
set(CPACK_NSIS_PACKAGE_NAME Tallyroot)
set(CPACK_NSIS_DISPLAY_NAME "Tallyroot ${PROJECT_VERSION}")
set(CPACK_NSIS_INSTALLED_ICON_NAME Tallyroot.exe)
set(CPACK_NSIS_MUI_ICON ${icon})
set(CPACK_NSIS_MUI_UNIICON ${icon})
set(CPACK_NSIS_ENABLE_UNINSTALL_BEFORE_INSTALL ON)
set(CPACK_NSIS_URL_INFO_ABOUT ${TALLYROOT_WEB_ADDRESS})
# A 64-bit installer for a 64-bit program: it needs no 32-bit Windows layer
# (nor, under Wine, a 32-bit Wine).
set(CPACK_NSIS_DEFINES "Target amd64-unicode")
set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
