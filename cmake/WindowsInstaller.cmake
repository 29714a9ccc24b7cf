# The Windows layout (every file beside the programs, as in the portable zip)
# and the NSIS installer made of it: for all users, with administrator rights,
# a Start-menu entry, an uninstaller, and /S for a silent install.
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
set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
set(CPACK_NSIS_IGNORE_LICENSE_PAGE ON) # nothing to agree to
set(CPACK_NSIS_MUI_FINISHPAGE_RUN Tallyroot.exe)
set(CPACK_PACKAGE_INSTALL_REGISTRY_KEY Tallyroot)
set(uninstall_key "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Tallyroot")
# A 64-bit installer for a 64-bit program: it needs no 32-bit Windows layer
# (nor, under Wine, a 32-bit Wine). Installing again goes where the last
# install went. The setup file names itself and its version, and the
# uninstaller leaves no empty vendor key behind.
string(JOIN "\n" CPACK_NSIS_DEFINES
    "Target amd64-unicode"
    "!include FileFunc.nsh"
    "InstallDirRegKey HKLM \"${uninstall_key}\" InstallLocation"
    "VIProductVersion ${PROJECT_VERSION}.0"
    "VIAddVersionKey ProductName Tallyroot"
    "VIAddVersionKey ProductVersion ${PROJECT_VERSION}"
    "VIAddVersionKey FileVersion ${PROJECT_VERSION}"
    "VIAddVersionKey FileDescription \"Tallyroot ${PROJECT_VERSION} setup\""
    "VIAddVersionKey CompanyName \"${CPACK_PACKAGE_VENDOR}\""
    "VIAddVersionKey LegalCopyright \"${CPACK_PACKAGE_VENDOR}\""
    "Function un.onUninstSuccess"
    "  DeleteRegKey /ifempty SHCTX \"Software\\${CPACK_PACKAGE_VENDOR}\""
    "FunctionEnd")
# Apps & features shows where it is and how much it takes.
string(JOIN "\n" CPACK_NSIS_EXTRA_INSTALL_COMMANDS
    "WriteRegStr SHCTX \"${uninstall_key}\" InstallLocation \"$INSTDIR\""
    "\${GetSize} \"$INSTDIR\" \"/S=0K\" $0 $1 $2"
    "IntFmt $0 \"0x%08X\" $0"
    "WriteRegDWORD SHCTX \"${uninstall_key}\" EstimatedSize $0")
# The Qt and compiler libraries are stripped as the programs are.
set(CPACK_TALLYROOT_STRIP ${CMAKE_STRIP})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/StripPackage.cmake)
