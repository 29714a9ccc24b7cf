#!/usr/bin/env bash
# tallyroot-scan at the edges of its command line: a folder whose name is not
# UTF-8, output that cannot be written, JSON into a pipe, a JSON file that
# cannot be written in full, and files whose sizes add up past 2^64.
#   command-line.sh TALLYROOT-SCAN
set -euo pipefail
scan=$1
# Small file systems of our own need a mount namespace: as root, the script
# runs again in one; without it those cases are skipped.
if [ "$(id -u)" -eq 0 ] && [ -z "${TALLYROOT_IN_NAMESPACE:-}" ] && unshare -m true 2>/dev/null; then
    TALLYROOT_IN_NAMESPACE=1 exec unshare -m bash "$0" "$@"
fi
work=$(mktemp -d /tmp/tallyroot-command-line.XXXXXX)
trap 'umount "$work/small" "$work/huge" 2>/dev/null || true; rm -rf "$work"' EXIT
passed=0 failed=0
check() { # LABEL CONDITION...
    local label=$1; shift
    if "$@"; then passed=$((passed + 1)); else echo "$label: failed"; failed=$((failed + 1)); fi
}

odd=$work/$'caf\xe9'
mkdir -p "$odd/inner" && printf 'abc' > "$odd/inner/file"
summary=$("$scan" --defaults "$odd" 2>&1) || true
check "a folder named in Latin-1" grep -q ': 2 folders, 1 files, 3 bytes' <<<"$summary"

status=0
"$scan" --defaults "$odd" >/dev/full 2>"$work/error" || status=$?
check "output that cannot be written fails" [ "$status" -eq 1 ]
check "and says so" grep -q 'write error' "$work/error"

# Many folders: more JSON than the small file system takes.
mkdir -p "$work/tree" && (cd "$work/tree" && mkdir $(seq -f 'folder-%g' 2000))
printf 'before' > "$work/kept.json"
"$scan" --defaults --json "$work/kept.json" "$work/tree" >/dev/null
check "a JSON file replaced whole" grep -q '"totalSubFolders":2001' "$work/kept.json"

# A pipe is written into, not replaced by a file (as root, the same would
# put a file where /dev/null was).
mkfifo "$work/pipe"
timeout 20 cat "$work/pipe" > "$work/piped.json" &
reader=$!
"$scan" --defaults --json "$work/pipe" "$work/tree" >/dev/null 2>&1 || true
[ -p "$work/pipe" ] || echo '{}' > "$work/pipe" # a file in its place: let the reader go
wait "$reader" || true
check "a pipe stays a pipe" [ -p "$work/pipe" ]
check "and carries the JSON" grep -q '"totalSubFolders":2001' "$work/piped.json"

mkdir -p "$work/small" "$work/huge"
if [ -n "${TALLYROOT_IN_NAMESPACE:-}" ] && mount -t tmpfs -o size=64k tmpfs "$work/small"; then
    printf 'before' > "$work/small/scan.json"
    status=0
    "$scan" --defaults --json "$work/small/scan.json" "$work/tree" >/dev/null 2>&1 || status=$?
    check "a JSON file that does not fit fails" [ "$status" -eq 1 ]
    check "and the file there stays as it was" [ "$(cat "$work/small/scan.json")" = before ]
    check "and nothing else is left" [ "$(ls -A "$work/small")" = scan.json ]
else
    echo "a JSON file that does not fit: skipped (needs root and a mount namespace)"
fi

# tmpfs takes sparse files up to 2^63 - 1 bytes; three of them pass 2^64.
if [ -n "${TALLYROOT_IN_NAMESPACE:-}" ] && mount -t tmpfs -o size=1m tmpfs "$work/huge"; then
    mkdir "$work/huge/inner"
    for name in a b c; do truncate -s 9223372036854775807 "$work/huge/inner/$name.iso"; done
    summary=$("$scan" --defaults --json "$work/huge.json" "$work/huge")
    check "totals stop at the largest size" grep -q ' 18446744073709551615 bytes' <<<"$summary"
    check "and the JSON writes them unsigned" \
        grep -q '"size":18446744073709551615,"sizeText":"17179869184.00 GB"' "$work/huge.json"
    check "with no negative size" bash -c "! grep -q '\"size\":-' '$work/huge.json'"
else
    echo "sizes past 2^64: skipped (needs root and a mount namespace)"
fi
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
