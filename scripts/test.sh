#!/usr/bin/env bash
# Builds Tallyroot and every test suite, and runs them all: the QtTest suites on
# the offscreen platform, and the Win32 backend's tests under Wine (label win32).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh test
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build
cd build
ctest --output-on-failure --timeout 600
cd ..
scripts/test-windows.sh
