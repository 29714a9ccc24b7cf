#!/usr/bin/env bash
# The scan engine against du on the same tree, warm cache, in one run.
#
#   bench/scan-bench.sh [TREE]     (default /tmp/tallyroot-bench-tree)
#
# Makes the tree on first use (1,000,000 sparse files in 100,000 folders, depth
# up to 12), then times three runs of each program and reports the median wall
# time and the peak memory. du -sb -l counts apparent sizes and every hard
# link, as the engine does; it also counts each folder's own size, which the
# engine leaves out, so those sizes are taken off before the totals are
# compared. Files are every entry that is not a folder.
set -euo pipefail
cd "$(dirname "$0")/.."
tree=${1:-/tmp/tallyroot-bench-tree}
runs=3

command -v /usr/bin/time >/dev/null 2>&1 || {
    echo "Installing time"; DEBIAN_FRONTEND=noninteractive apt-get install -y -qq time >/dev/null; }
cmake -S . -B build -G Ninja >/dev/null
cmake --build build --target tallyroot-scan tallyroot-maketree >/dev/null

if [ ! -f "$tree.done" ]; then
    echo "Making the tree in $tree (once)..."
    rm -rf "$tree"
    build/bench/tallyroot-maketree "$tree"
    touch "$tree.done"
fi

# measure NAME COMMAND...: prints "seconds peak-KiB" of the median run.
measure() {
    local name=$1; shift
    "$@" >/dev/null 2>&1 # warm the cache
    for _ in $(seq $runs); do
        /usr/bin/time -f "%e %M" "$@" 2>&1 >/dev/null | tail -n 1
    done | sort -n | sed -n "$(( (runs + 1) / 2 ))p"
}

read -r du_seconds du_kib < <(measure du du -sbl -x "$tree")
read -r scan_seconds scan_kib < <(measure scan build/src/tallyroot-scan --defaults "$tree")

summary=$(build/src/tallyroot-scan --defaults "$tree" 2>/dev/null)
scan_files=$(sed -E 's/.* ([0-9]+) files.*/\1/' <<<"$summary")
scan_bytes=$(sed -E 's/.* ([0-9]+) bytes.*/\1/' <<<"$summary")
du_bytes=$(du -sbl -x "$tree" | cut -f1)
folder_bytes=$(find "$tree" -xdev -type d -printf '%s\n' | awk '{ s += $1 } END { print s }')
find_files=$(find "$tree" -xdev ! -type d | wc -l)

echo "tree:          $tree"
echo "engine:        $summary"
printf 'du -sb -l:     %6.2f s  peak %4d MiB\n' "$du_seconds" $((du_kib / 1024))
printf 'tallyroot-scan:%6.2f s  peak %4d MiB\n' "$scan_seconds" $((scan_kib / 1024))
awk -v a="$scan_seconds" -v b="$du_seconds" 'BEGIN { printf "ratio:         %.2f x du\n", a / b }'
status=0
if [ "$scan_bytes" -eq $((du_bytes - folder_bytes)) ]; then
    echo "bytes:         agree ($scan_bytes)"
else
    echo "bytes:         DIFFER: engine $scan_bytes, du less folders $((du_bytes - folder_bytes))"; status=1
fi
if [ "$scan_files" -eq "$find_files" ]; then
    echo "files:         agree ($scan_files)"
else
    echo "files:         DIFFER: engine $scan_files, find $find_files"; status=1
fi
exit $status
