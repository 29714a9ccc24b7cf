#!/usr/bin/env bash
# The Windows installer as a user runs it, under Wine in a throw-away prefix:
# a silent install, the programs and the Start-menu entry where they belong,
# the installed tallyroot-scan.exe run, what Apps & features shows, a second
# install that goes where the first went, and a silent uninstall that leaves
# nothing behind.
#   nsis.sh BUILD-DIR VERSION     (the Windows build)
set -euo pipefail
build=$(realpath "$1") version=$2
setup=$build/Tallyroot-$version-windows-x64-setup.exe
rm -f "$setup"
(cd "$build" && cpack -G NSIS >/dev/null)
prefix=$(mktemp -d /tmp/tallyroot-nsis.XXXXXX)
home=$(mktemp -d /tmp/tallyroot-nsis-home.XXXXXX)
trap '/usr/lib/wine/wineserver64 -k 2>/dev/null || true; rm -rf "$prefix" "$home"' EXIT
# A home of its own: Wine links the prefix's user folders to HOME, and the
# installer's Start-menu entry would become a desktop menu entry below it;
# the menu builder is not run at all.
export HOME=$home XDG_CONFIG_HOME=$home/.config XDG_DATA_HOME=$home/.local/share \
    XDG_CACHE_HOME=$home/.cache
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=
wine=/usr/lib/wine/wine64
wineserver=/usr/lib/wine/wineserver64
target='C:\TallyrootTest'
installed="$prefix/drive_c/TallyrootTest"
failed=0
check() { # LABEL COMMAND...
    if "${@:2}"; then echo "ok: $1"; else echo "FAILED: $1"; failed=1; fi
}

"$wine" wineboot --init >/dev/null 2>&1
# /D= comes last and unquoted, as NSIS reads it: a path without blanks.
"$wine" "$setup" /S "/D=$target" >/dev/null 2>&1
"$wineserver" -w
check "Tallyroot.exe installed" test -f "$installed/Tallyroot.exe"
check "tallyroot-scan.exe installed" test -f "$installed/tallyroot-scan.exe"
check "its Qt beside it" test -f "$installed/platforms/qwindows.dll"
check "a Start-menu entry" test -n "$(find "$prefix/drive_c" -path '*Start Menu*' -name 'Tallyroot.lnk')"
check "no desktop menu entry made in any home" test -z "$(find "$home" -name '*.desktop')"
shown=$("$wine" "$installed/tallyroot-scan.exe" --version 2>/dev/null | tr -d '\r')
check "tallyroot-scan.exe --version" test "$shown" = "tallyroot-scan $version"

uninstall_key='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Tallyroot'
query() { "$wine" reg query "$@" 2>/dev/null | tr -d '\r'; }
check "Apps & features knows where it is" \
    grep -q "InstallLocation.*REG_SZ.*C:\\\\TallyrootTest" <<<"$(query "$uninstall_key")"
size=$(query "$uninstall_key" /v EstimatedSize | awk '/EstimatedSize/ {print $3}')
check "and how much it takes (stripped: under 40 MB)" \
    test "$((size))" -gt 10000 -a "$((size))" -lt 40000
check "the setup file has its version" \
    grep -q "$version" <<<"$(strings -el "$setup" | grep -A1 -x ProductVersion)"

# Installed again without a folder: it goes where it was, over the old one.
"$wine" "$setup" /S >/dev/null 2>&1
"$wineserver" -w
check "installed again in the same folder" test -f "$installed/Tallyroot.exe"
check "nothing in Program Files" test ! -e "$prefix/drive_c/Program Files/Tallyroot"

# _?= keeps the uninstaller in place and waits for it.
"$wine" "$installed/Uninstall.exe" /S "_?=$target" >/dev/null 2>&1
"$wineserver" -w
check "uninstalled, nothing left but the running uninstaller (kept by _?=)" \
    test -z "$(ls -A "$installed" | grep -vx Uninstall.exe)"
check "no Start-menu entry left" test -z "$(find "$prefix/drive_c" -path '*Start Menu*' -name 'Tallyroot.lnk')"
check "no key left under Software" \
    bash -c '! "$0" reg query "HKLM\Software\The Tallyroot developers" >/dev/null 2>&1' "$wine"
exit $failed
