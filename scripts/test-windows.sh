#!/usr/bin/env bash
# The Windows half of the test command: cross-builds the whole program and its
# tests with mingw-w64 against Qt for Windows, and runs the tests under Wine.
# Qt for Windows comes from TALLYROOT_QT_MINGW_PREFIX, or is unpacked from the
# shared toolchain archive into the build tree.
set -euo pipefail
cd "$(dirname "$0")/.."

archive=../shared/toolchains/qt6-mingw64-6.4.2.tar.xz
if [ -z "${TALLYROOT_QT_MINGW_PREFIX:-}" ]; then
    if [ ! -f "$archive" ]; then
        echo "Windows build: skipped, no Qt for mingw-w64 (set TALLYROOT_QT_MINGW_PREFIX or provide $archive)"
        exit 0
    fi
    unpacked=build-windows/qt
    if [ ! -f "$unpacked/.unpacked" ] || [ "$archive" -nt "$unpacked/.unpacked" ]; then
        rm -rf "$unpacked" && mkdir -p "$unpacked"
        tar -xJf "$archive" -C "$unpacked"
        touch "$unpacked/.unpacked"
    fi
    export TALLYROOT_QT_MINGW_PREFIX="$PWD/$unpacked/qt6-mingw64"
fi

cmake --preset windows >/dev/null
cmake --build --preset windows
cmake --build --preset windows --target windows_package
ctest --preset windows --timeout 600
