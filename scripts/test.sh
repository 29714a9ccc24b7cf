#!/usr/bin/env bash
# Checks the format of the sources, then builds Tallyroot and every test suite
# with warnings as errors, and runs them all: the QtTest suites on the
# offscreen platform, and the Win32 backend's tests under Wine (label win32);
# then every Linux suite again under AddressSanitizer and UndefinedBehaviorSanitizer,
# the suites where the scan's threads meet under ThreadSanitizer, and last the
# Windows build under Wine.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh test
scripts/check-format.sh
cmake --preset linux >/dev/null
cmake --build --preset linux
ctest --preset linux --timeout 600

cmake --preset asan >/dev/null
cmake --build --preset asan
ctest --preset asan --timeout 900

cmake --preset tsan >/dev/null
cmake --build --preset tsan
ctest --preset tsan --timeout 900

scripts/test-windows.sh
