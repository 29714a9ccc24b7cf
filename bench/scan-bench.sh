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
source bench/common.sh
prepare "$tree" tallyroot-scan

read -r du_seconds du_kib < <(measure du -sbl -x "$tree")
read -r scan_seconds scan_kib < <(measure build/src/tallyroot-scan --defaults "$tree")

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
