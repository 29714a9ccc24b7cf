#!/usr/bin/env bash
# The walk where a naive one goes wrong, against du and find: a bind mount of
# an ancestor (a loop on the same file system, entered once only), a tree
# 1,500 folders deep under a limit of 256 open files, and a chain 20,000 deep
# scanned, written as JSON and shown under a 512 KiB stack. Bytes are du -sb -l
# less each folder's own size; files are every entry that is not a folder.
#   walk-limits.sh TALLYROOT-SCAN MAKETREE [RESULTS-BENCH]
set -euo pipefail
scan=$1
maketree=$2
results=${3:-}
# A bind mount needs a mount namespace of our own: as root, the script runs
# again in one; without it the bind mount case is skipped.
if [ "$(id -u)" -eq 0 ] && [ -z "${TALLYROOT_IN_NAMESPACE:-}" ] && unshare -m true 2>/dev/null; then
    TALLYROOT_IN_NAMESPACE=1 exec unshare -m bash "$0" "$@"
fi
work=$(mktemp -d /tmp/tallyroot-limits.XXXXXX)
trap 'umount "$work/loop/inner/again" "$work/volume/inner" "$work/volume" 2>/dev/null || true; rm -rf "$work"' EXIT
passed=0 failed=0

# compare LABEL TREE [THREADS]: the engine's totals against du's and find's;
# prints "ok" or what differs.
compare() {
    local summary bytes files du_bytes folder_bytes find_files
    summary=$("$scan" --defaults --threads "${3:-4}" "$2")
    bytes=$(sed -E 's/.* ([0-9]+) bytes.*/\1/' <<<"$summary")
    files=$(sed -E 's/.* ([0-9]+) files.*/\1/' <<<"$summary")
    du_bytes=$(du -sbl "$2" 2>/dev/null | cut -f1)
    folder_bytes=$(find "$2" -type d -printf '%s\n' 2>/dev/null | awk '{ s += $1 } END { print s }')
    find_files=$(find "$2" ! -type d 2>/dev/null | wc -l)
    if [ "$bytes" -eq $((du_bytes - folder_bytes)) ] && [ "$files" -eq "$find_files" ]; then
        echo ok
    else
        echo "$1: engine $bytes bytes, $files files; du less folders $((du_bytes - folder_bytes)), find $find_files"
    fi
}
count() {
    if [ "$1" = ok ]; then passed=$((passed + 1)); else echo "$1"; failed=$((failed + 1)); fi
}

# 1,500 levels, with a second folder at every level that the walk comes back
# to: the walk must not need a descriptor per level.
# Built from the top by relative paths (a shell that changes into a folder that
# deep slows down with every level).
sides=() level=
for _ in $(seq 1500); do level+=n/; sides+=("${level}side"); done
( mkdir "$work/deep" && cd "$work/deep" && printf '%s\0' "${sides[@]}" | xargs -0 mkdir -p &&
  for side in "${sides[@]}"; do printf 'side' > "$side/file"; done && printf 'leaf' > "${level}leaf" )
for threads in 1 4; do
    count "$(ulimit -n 256; compare "deep tree, $threads readers, 256 descriptors" "$work/deep" $threads)"
done

# 20,000 levels, a file every 100: nothing in the scan, the JSON or the
# results screen may recurse once per level.
"$maketree" --chain "$work/chain" 20000 >/dev/null
count "$(ulimit -s 512; compare "chain of 20,000, 512 KiB stack" "$work/chain")"
json=$( (ulimit -s 512; "$scan" --defaults --json "$work/chain.json" "$work/chain" >/dev/null) &&
    grep -o '"depth":[0-9]*' "$work/chain.json" | sort -t: -k2 -n | uniq | wc -l)
count "$([ "$json" = 20001 ] && echo ok || echo "chain JSON: $json depths, not 20001")"
rm -f "$work/chain.json"
if [ -n "$results" ]; then
    shown=$( (ulimit -s 512; QT_QPA_PLATFORM=offscreen "$results" --map "$work/chain" 2>/dev/null) || true)
    count "$(grep -q '^results .* release ' <<<"$shown" && echo ok ||
        echo "chain on the results screen, 512 KiB stack: ${shown:-no figures}")"
fi

mkdir -p "$work/loop/inner/again"
printf 'abc' > "$work/loop/file"
printf 'defgh' > "$work/loop/inner/file"
if [ -n "${TALLYROOT_IN_NAMESPACE:-}" ] && mount --bind "$work/loop" "$work/loop/inner/again"; then
    count "$(compare "bind mount of an ancestor" "$work/loop")"
else
    echo "bind mount of an ancestor: skipped (needs root and a mount namespace)"
fi
# A volume's root: the summary adds the scan up against the volume, whose
# other file system below is not entered.
mkdir -p "$work/volume"
if [ -n "${TALLYROOT_IN_NAMESPACE:-}" ] && mount -t tmpfs -o size=16m tmpfs "$work/volume"; then
    head -c 1048576 /dev/zero > "$work/volume/file"
    mkdir "$work/volume/inner" && mount -t tmpfs -o size=1m tmpfs "$work/volume/inner"
    line=$("$scan" --defaults "$work/volume" | sed -n 2p)
    expected="Volume: 1.00 MB used, 1.00 MB found on disk by this scan (100%)."
    count "$([ "$line" = "$expected" ] && echo ok || echo "volume root: \"$line\"")"
else
    echo "volume root: skipped (needs root and a mount namespace)"
fi
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
