#!/usr/bin/env bash
# Builds Tallyroot and starts it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh run
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target Tallyroot
exec build/src/Tallyroot "$@"
