#!/usr/bin/env bash
# The window program's command line answers --version and --help itself,
# without a display, and exits.
#   command-line.sh TALLYROOT VERSION
set -euo pipefail
program=$1
version=$2
passed=0 failed=0
check() { # LABEL CONDITION...
    local label=$1; shift
    if "$@"; then passed=$((passed + 1)); else echo "$label: failed"; failed=$((failed + 1)); fi
}
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
check "--version prints the version" [ "$("$program" --version)" = "tallyroot $version" ]
check "-v too" [ "$("$program" -v)" = "tallyroot $version" ]
help=$("$program" --help)
check "--help prints the usage" grep -q '^Usage: tallyroot \[FOLDER | SCAN-FILE\]' <<<"$help"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
