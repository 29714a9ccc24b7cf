# Source lists of the platform layer, shared by the application build and the
# Qt-free cross build of the Win32 backend's tests.
set(TALLYROOT_PLATFORM_COMMON_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/DebugLog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SettingsKey.cpp
)
set(TALLYROOT_PLATFORM_WIN32_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/win32/Win32ColourScheme.cpp
    ${CMAKE_CURRENT_LIST_DIR}/win32/Win32DirectoryListing.cpp
    ${CMAKE_CURRENT_LIST_DIR}/win32/Win32FileTime.cpp
    ${CMAKE_CURRENT_LIST_DIR}/win32/Win32Folders.cpp
    ${CMAKE_CURRENT_LIST_DIR}/win32/Win32Registry.cpp
    ${CMAKE_CURRENT_LIST_DIR}/win32/Win32Screen.cpp
    ${CMAKE_CURRENT_LIST_DIR}/win32/Win32Settings.cpp
    ${CMAKE_CURRENT_LIST_DIR}/win32/Win32Volumes.cpp
)
set(TALLYROOT_PLATFORM_WIN32_LIBRARIES advapi32 shell32 user32 ole32 comctl32 uuid)
set(TALLYROOT_PLATFORM_WIN32_DEFINITIONS UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)
# The Qt side of the Win32 backend, for the Windows build of the program: the
# part the scan engine needs (Qt Core), and the desktop part (Qt Widgets).
set(TALLYROOT_PLATFORM_WIN32_QT_SOURCES ${CMAKE_CURRENT_LIST_DIR}/win32/qt/NativeText.cpp)
set(TALLYROOT_PLATFORM_WIN32_DESKTOP_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/win32/qt/Win32ColourSchemeWatch.cpp
    ${CMAKE_CURRENT_LIST_DIR}/win32/qt/Win32Shell.cpp
)
set(TALLYROOT_PLATFORM_POSIX_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/posix/BlockDevices.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/MountTable.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/NativeText.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PosixDirectoryListing.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PosixFileTime.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PosixFolders.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PosixSettings.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PosixVolumes.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/SettingsFile.cpp
)
set(TALLYROOT_PLATFORM_POSIX_DESKTOP_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/posix/ColourSchemeReplies.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PortalSettings.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PosixColourScheme.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PosixScreen.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/PosixShell.cpp
)
