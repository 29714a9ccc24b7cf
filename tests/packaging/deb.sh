#!/usr/bin/env bash
# The Debian package as a user gets it: made by CPack from this build, passed
# by lintian (no error, no warning) and by the desktop-entry and AppStream
# validators, unpacked with dpkg-deb, and its tallyroot-scan run from there.
#   deb.sh BUILD-DIR VERSION
set -euo pipefail
build=$1 version=$2
deb=$build/tallyroot_${version}_amd64.deb
rm -f "$deb"
(cd "$build" && cpack -G DEB >/dev/null)
[ -f "$deb" ] || { echo "no package at $deb"; exit 1; }
work=$(mktemp -d /tmp/tallyroot-deb.XXXXXX)
trap 'rm -rf "$work"' EXIT
failed=0
check() { # LABEL COMMAND...
    if "${@:2}" >"$work/out" 2>&1; then echo "ok: $1"; else echo "FAILED: $1"; cat "$work/out"; failed=1; fi
}

check "lintian" lintian --fail-on error,warning "$deb"
root=$work/root
dpkg-deb -x "$deb" "$root"
check "desktop entry" desktop-file-validate "$root"/usr/share/applications/org.tallyroot.Tallyroot.desktop
check "AppStream metainfo" appstreamcli validate --no-net "$root"/usr/share/metainfo/org.tallyroot.Tallyroot.metainfo.xml
for file in usr/bin/tallyroot usr/share/man/man1/tallyroot-scan.1.gz \
            usr/share/doc/tallyroot/user-guide.html usr/share/icons/hicolor/scalable/apps/org.tallyroot.Tallyroot.svg \
            usr/share/icons/hicolor/{16x16,32x32,48x48,256x256}/apps/org.tallyroot.Tallyroot.png; do
    check "$file" test -s "$root/$file"
done

scan=$root/usr/bin/tallyroot-scan
check "--version" test "$("$scan" --version)" = "tallyroot-scan $version"
mkdir -p "$work/tree/inner"
printf 'abc' > "$work/tree/a"
printf 'defgh' > "$work/tree/inner/b"
summary=$("$scan" --defaults "$work/tree")
check "a scan from the unpacked package" grep -q ': 2 folders, 2 files, 8 bytes, ' <<<"$summary"
exit $failed
