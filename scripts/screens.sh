#!/usr/bin/env bash
# Makes the screens in docs/images from the real program, offscreen: the home
# screen, a disk's details and the options over throw-away settings, a sample
# tree's results, and a scan of the disk holding / (results-drive.png). With
# the Windows build made by scripts/test-windows.sh beside it, the home screen
# of Tallyroot.exe under Wine too.
#   scripts/screens.sh [--dark]   (--dark: into build/screens-dark instead)
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh run
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target tallyroot-screens

out=docs/images
drive=(--drive /)
if [ "${1:-}" = --dark ]; then
    out=build/screens-dark
    drive=(--dark)
fi
export QT_QPA_PLATFORM="offscreen:configfile=$PWD/tests/offscreen-screen.json"
export XDG_RUNTIME_DIR="$(mktemp -d)"
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
build/tests/tallyroot-screens "$out" "${drive[@]}"

windows=build-windows/bin/tallyroot-screens.exe
wine=/usr/lib/wine/wine64
if [ "$out" = docs/images ] && [ -f "$windows" ] && [ -x "$wine" ]; then
    home="$(mktemp -d)"
    shots="$(mktemp -d)"
    trap 'rm -rf "$XDG_RUNTIME_DIR" "$home" "$shots"' EXIT
    HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_DATA_HOME="$home/.local/share" \
        XDG_CACHE_HOME="$home/.cache" WINEPREFIX="$home/prefix" WINEDEBUG=-all \
        WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=" \
        WINEQT_QPA_PLATFORM=offscreen WINEQT_QPA_FONTDIR=Z:/usr/share/fonts/truetype/dejavu \
        "$wine" "$windows" "Z:$shots" --only home-screen
    WINEPREFIX="$home/prefix" /usr/lib/wine/wineserver -w
    cp "$shots/home-screen.png" "$out/windows-main-window.png"
    echo "wrote $out/windows-main-window.png"
fi
