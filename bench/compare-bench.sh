#!/usr/bin/env bash
# Comparing two scans of the benchmark tree: the tree, and a copy of it (hard
# links, so it takes no room) with 1,000 files changed: a third grown, a
# third removed, a third added. Both are scanned to JSON once; then times, as
# the median of three warm runs, tallyroot-scan --compare of the two files and
# of the older file with the copy scanned then, and the engine alone.
#
#   bench/compare-bench.sh [TREE]     (default /tmp/tallyroot-bench-tree)
set -euo pipefail
cd "$(dirname "$0")/.."
tree=${1:-/tmp/tallyroot-bench-tree}
source bench/common.sh
prepare "$tree" tallyroot-scan tallyroot-compare-bench

work=$(mktemp -d /tmp/tallyroot-compare-bench.XXXXXX)
trap 'rm -rf "$work"' EXIT
copy=$work/tree
echo "Copying the tree and changing 1,000 files..."
cp -al "$tree" "$copy"
# Spread over the whole tree; a grown file is a new one in the link's place,
# so that the tree it was copied from stays as it was.
mapfile -t files < <(find "$copy" -type f | sort)
step=$(( ${#files[@]} / 1000 ))
for i in $(seq 0 999); do
    file=${files[$((i * step))]}
    case $((i % 3)) in
    0) size=$(stat -c %s "$file"); rm "$file"; truncate -s $((size + 65536)) "$file" ;;
    1) rm "$file" ;;
    2) truncate -s 100000 "$file.added" ;;
    esac
done

scan=build/src/tallyroot-scan
"$scan" --defaults --json "$work/older.json" "$tree" >/dev/null
"$scan" --defaults --json "$work/newer.json" "$copy" >/dev/null
echo "scan files:      $(du -h "$work/older.json" | cut -f1) and $(du -h "$work/newer.json" | cut -f1)"
"$scan" --compare "$work/older.json" --top 3 "$work/newer.json" | sed 's/^/  /'

read -r files_seconds files_kib files_min files_max < \
    <(measure "$scan" --compare "$work/older.json" "$work/newer.json")
read -r folder_seconds folder_kib folder_min folder_max < \
    <(measure "$scan" --defaults --compare "$work/older.json" "$copy")
read -r scan_seconds _ scan_min scan_max < <(measure "$scan" --defaults "$copy")
printf 'compare two files:        %.2f s (%.2f-%.2f)  peak %d MiB\n' "$files_seconds" \
    "$files_min" "$files_max" $((files_kib / 1024))
printf 'compare file with folder: %.2f s (%.2f-%.2f)  peak %d MiB\n' "$folder_seconds" \
    "$folder_min" "$folder_max" $((folder_kib / 1024))
printf 'the folder scanned alone: %.2f s (%.2f-%.2f)\n' "$scan_seconds" "$scan_min" "$scan_max"
build/bench/tallyroot-compare-bench "$work/older.json" "$work/newer.json" 2>/dev/null | grep '^compare'
