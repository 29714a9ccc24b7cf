# Builds the Win32 backend's tests with mingw-w64 and adds them to this build's
# CTest run, labelled "win32", each run by Wine in a throw-away prefix.
find_program(TALLYROOT_MINGW_CXX x86_64-w64-mingw32-g++-posix)
find_program(TALLYROOT_WINE64 NAMES wine64 PATHS /usr/lib/wine)
if(NOT TALLYROOT_MINGW_CXX OR NOT TALLYROOT_WINE64)
    message(STATUS "Win32 backend tests: skipped, mingw-w64 (posix) or wine64 not found")
    return()
endif()

include(ExternalProject)
set(win32_build ${CMAKE_CURRENT_BINARY_DIR}/win32-backend)
ExternalProject_Add(win32_backend_tests
    SOURCE_DIR ${PROJECT_SOURCE_DIR}/cmake/win32-backend
    BINARY_DIR ${win32_build}
    CMAKE_ARGS -DCMAKE_TOOLCHAIN_FILE=${PROJECT_SOURCE_DIR}/cmake/mingw-w64-x86_64-posix.cmake
               -DCMAKE_BUILD_TYPE=Release
               -DTALLYROOT_WARNINGS_AS_ERRORS=${TALLYROOT_WARNINGS_AS_ERRORS}
    INSTALL_COMMAND ""
    BUILD_ALWAYS ON
    USES_TERMINAL_BUILD ON)

set(wine_prefix ${CMAKE_CURRENT_BINARY_DIR}/wineprefix)
# A home of its own: Wine links the prefix's user folders to HOME and writes
# menu entries below it; the menu builder is not run at all.
set(wine_home ${CMAKE_CURRENT_BINARY_DIR}/winehome)
file(MAKE_DIRECTORY ${wine_home})
set(wine_environment "WINEPREFIX=${wine_prefix};WINEDEBUG=-all;HOME=${wine_home}"
    "XDG_CONFIG_HOME=${wine_home}/.config;XDG_DATA_HOME=${wine_home}/.local/share"
    "XDG_CACHE_HOME=${wine_home}/.cache;WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=")

# Wine's first start creates the prefix and takes a while; do it once, up front.
add_test(NAME win32.prefix COMMAND ${TALLYROOT_WINE64} wineboot --init)
set_tests_properties(win32.prefix PROPERTIES
    FIXTURES_SETUP wine_prefix LABELS win32 ENVIRONMENT "${wine_environment}" TIMEOUT 300)

include(${PROJECT_SOURCE_DIR}/tests/platform/tests.cmake)
foreach(test IN LISTS TALLYROOT_PLATFORM_TESTS TALLYROOT_PLATFORM_WIN32_TESTS)
    add_test(NAME win32.${test} COMMAND ${TALLYROOT_WINE64} ${win32_build}/${test}.exe)
    set_tests_properties(win32.${test} PROPERTIES
        FIXTURES_REQUIRED wine_prefix LABELS win32 ENVIRONMENT "${wine_environment}" TIMEOUT 120)
endforeach()
