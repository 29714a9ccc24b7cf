#!/usr/bin/env bash
# What the user waits for on the results screen, against the engine alone, on
# the benchmark tree, warm cache, in one run.
#
#   bench/results-bench.sh [TREE]     (default /tmp/tallyroot-bench-tree)
#
# Runs the real results screen offscreen three times: the time from
# startScanning() to scanFinish(), and from Back to backToMain(). Three more
# runs show the Map tab at 1920x1080 before Back: the time to its first
# picture (layout and paint) and the peak memory with the map shown. Then
# times tallyroot-scan and du -sb -l on the same tree and reports the ratios,
# how long a search of the whole scan takes for a few kinds of query, how long
# the results screen takes to open the tree's saved scan (plain and gzip) and
# at what peak, and how
# long the search panel takes from a key typed to its rows shown, and how
# long the results take to follow a removal or a refresh (the scan changed
# and counted again).
set -euo pipefail
cd "$(dirname "$0")/.."
tree=${1:-/tmp/tallyroot-bench-tree}
source bench/common.sh
prepare "$tree" tallyroot-scan tallyroot-results-bench tallyroot-search-bench tallyroot-edit-bench

build/bench/tallyroot-results-bench "$tree" >/dev/null 2>&1 # warm the cache
# median_line KEY ARGS...: the run whose figure after KEY is the median, and
# that figure's range over the runs.
median_line() {
    local key=$1; shift
    for _ in $(seq $runs); do
        build/bench/tallyroot-results-bench "$@" 2>/dev/null | grep '^results'
    done | awk -v key="$key" '{ for (i = 1; i < NF; i++) if ($i == key) print $(i + 1), $0 }' |
        sort -n | awk -v key="$key" '{ f[NR] = $1; sub(/^[^ ]* /, ""); l[NR] = $0 }
            END { print l[int((NR + 1) / 2)] " (" key " " f[1] "-" f[NR] " s)" }'
}
screen=$(median_line results "$tree")
map=$(median_line map --map "$tree")
results_seconds=$(awk '{ print $2 }' <<<"$screen")
read -r scan_seconds scan_kib scan_min scan_max < <(measure build/src/tallyroot-scan --defaults "$tree")
read -r du_seconds _ du_min du_max < <(measure du -sbl -x "$tree")

echo "tree:            $tree"
echo "results screen:  $screen (median of $runs)"
echo "with the map:    $map (median of $runs)"
echo "map memory:      $(( $(sed -E 's/.*peak ([0-9]+) MiB.*/\1/' <<<"$map") - $(sed -E 's/.*peak ([0-9]+) MiB.*/\1/' <<<"$screen") )) MiB more than without it"
printf 'tallyroot-scan:  %.2f s (%.2f-%.2f)  peak %d MiB\n' "$scan_seconds" "$scan_min" "$scan_max" \
    $((scan_kib / 1024))
printf 'du -sb -l:       %.2f s (%.2f-%.2f)\n' "$du_seconds" "$du_min" "$du_max"
echo "ratio:           $(ratio "$results_seconds" "$du_seconds") x du, $(ratio "$results_seconds" "$scan_seconds") x tallyroot-scan"
saved=$(mktemp -d /tmp/tallyroot-saved.XXXXXX)
build/src/tallyroot-scan --defaults --json "$saved/scan.json" "$tree" >/dev/null
gzip -k "$saved/scan.json"
for file in scan.json scan.json.gz; do
    opened=$(median_line results --open "$saved/$file")
    printf 'open %-11s %s, %s MiB file (median of %d)\n' "$file:" "$opened" \
        $(( $(stat -c %s "$saved/$file") / 1048576 )) "$runs"
    echo "                 $(ratio "$(awk '{ print $2 }' <<<"$opened")" "$results_seconds") x the scan on the results screen"
done
rm -rf "$saved"
build/bench/tallyroot-search-bench "$tree" 2>/dev/null | grep -E '^(search|panel)'
build/bench/tallyroot-edit-bench "$tree" 2>/dev/null | grep -E '^edit'
