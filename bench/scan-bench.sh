#!/usr/bin/env bash
# The scan engine against du on the same tree, in one run.
#
#   bench/scan-bench.sh [TREE]     (default /tmp/tallyroot-bench-tree)
#   BASELINE=REV bench/scan-bench.sh   also times tallyroot-scan as built at
#                                      git revision REV, for what a change costs
#
# Makes the tree on first use (1,000,000 sparse files in 100,000 folders, depth
# up to 12), then times three runs of each program and reports the median wall
# time with the range of the runs, the ratio to du and the peak memory: warm, and cold when the page
# cache can be dropped (as root). tallyroot-scan runs with one thread (the
# walk reads every folder itself) and with its default readers, and once more
# with --json. The JSON of 1, 2 and 8 readers must be the same byte for byte.
#
# du -sb -l counts apparent sizes and every hard link, as the engine does; it
# also counts each folder's own size, which the engine leaves out, so those
# sizes are taken off before the totals are compared. Files are every entry
# that is not a folder.
set -euo pipefail
cd "$(dirname "$0")/.."
tree=${1:-/tmp/tallyroot-bench-tree}
source bench/common.sh
prepare "$tree" tallyroot-scan
scan=build/src/tallyroot-scan
json=$(mktemp -d /tmp/tallyroot-bench-json.XXXXXX)
trap 'rm -rf "$json"' EXIT

# The engine as it was at another revision, built from its own sources.
baseline=
if [ -n "${BASELINE:-}" ]; then
    base=build-baseline/$(git rev-parse --short "$BASELINE")
    if [ ! -x "$base/build/src/tallyroot-scan" ]; then
        rm -rf "$base" && mkdir -p "$base"
        git archive "$BASELINE" | tar -x -C "$base"
        cmake -S "$base" -B "$base/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
            -DTALLYROOT_WIN32_BACKEND_TESTS=OFF >/dev/null
        cmake --build "$base/build" --target tallyroot-scan >/dev/null
    fi
    baseline=$base/build/src/tallyroot-scan
fi

read -r du_seconds du_kib du_min du_max < <(measure du -sbl -x "$tree")
read -r one_seconds one_kib one_min one_max < <(measure "$scan" --defaults --threads 1 "$tree")
read -r scan_seconds scan_kib scan_min scan_max < <(measure "$scan" --defaults "$tree")
read -r json_seconds json_kib json_min json_max < <(measure "$scan" --defaults --json "$json/default.json" "$tree")
[ -z "$baseline" ] || read -r base_seconds base_kib base_min base_max < <(measure "$baseline" --defaults "$tree")

summary=$("$scan" --defaults "$tree" 2>/dev/null)
echo "tree:    $tree"
echo "engine:  $summary"
echo "readers: $("$scan" --help | sed -nE 's/.*Default: ([0-9]+).*/\1/p') by default"
echo "warm, median of $runs:"
report "  du -sb -l" "$du_seconds" "$du_kib" "$du_min" "$du_max" "$du_seconds"
report "  tallyroot-scan --threads 1" "$one_seconds" "$one_kib" "$one_min" "$one_max" "$du_seconds"
report "  tallyroot-scan" "$scan_seconds" "$scan_kib" "$scan_min" "$scan_max" "$du_seconds"
report "  tallyroot-scan --json" "$json_seconds" "$json_kib" "$json_min" "$json_max" "$du_seconds"
if [ -n "$baseline" ]; then
    report "  tallyroot-scan at $BASELINE" "$base_seconds" "$base_kib" "$base_min" "$base_max" "$du_seconds"
    echo "  this build against $BASELINE: time $(ratio "$scan_seconds" "$base_seconds") x," \
         "peak memory $(ratio "$scan_kib" "$base_kib") x"
fi
if can_drop_caches; then
    read -r du_cold du_cold_kib du_cold_min du_cold_max < <(measure_cold du -sbl -x "$tree")
    read -r one_cold one_cold_kib one_cold_min one_cold_max < <(measure_cold "$scan" --defaults --threads 1 "$tree")
    read -r scan_cold scan_cold_kib scan_cold_min scan_cold_max < <(measure_cold "$scan" --defaults "$tree")
    echo "cold (page cache dropped before each run), median of $runs:"
    report "  du -sb -l" "$du_cold" "$du_cold_kib" "$du_cold_min" "$du_cold_max" "$du_cold"
    report "  tallyroot-scan --threads 1" "$one_cold" "$one_cold_kib" "$one_cold_min" "$one_cold_max" "$du_cold"
    report "  tallyroot-scan" "$scan_cold" "$scan_cold_kib" "$scan_cold_min" "$scan_cold_max" "$du_cold"
else
    echo "cold: skipped (dropping the page cache needs root)"
fi

status=0
scan_files=$(sed -E 's/.* ([0-9]+) files.*/\1/' <<<"$summary")
scan_bytes=$(sed -E 's/.* ([0-9]+) bytes.*/\1/' <<<"$summary")
du_bytes=$(du -sbl -x "$tree" | cut -f1)
folder_bytes=$(find "$tree" -xdev -type d -printf '%s\n' | awk '{ s += $1 } END { print s }')
find_files=$(find "$tree" -xdev ! -type d | wc -l)
if [ "$scan_bytes" -eq $((du_bytes - folder_bytes)) ]; then
    echo "bytes:   agree ($scan_bytes)"
else
    echo "bytes:   DIFFER: engine $scan_bytes, du less folders $((du_bytes - folder_bytes))"; status=1
fi
if [ "$scan_files" -eq "$find_files" ]; then
    echo "files:   agree ($scan_files)"
else
    echo "files:   DIFFER: engine $scan_files, find $find_files"; status=1
fi
for readers in 1 2 8; do
    "$scan" --defaults --threads $readers --json "$json/$readers.json" "$tree" >/dev/null
done
if cmp -s "$json/1.json" "$json/2.json" && cmp -s "$json/1.json" "$json/8.json"; then
    echo "json:    the same for 1, 2 and 8 readers ($(stat -c %s "$json/1.json") bytes)"
else
    echo "json:    DIFFERS between 1, 2 and 8 readers"; status=1
fi
exit $status
