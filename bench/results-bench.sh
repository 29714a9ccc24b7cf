#!/usr/bin/env bash
# What the user waits for on the results screen, against the engine alone, on
# the benchmark tree, warm cache, in one run.
#
#   bench/results-bench.sh [TREE]     (default /tmp/tallyroot-bench-tree)
#
# Runs the real results screen offscreen three times: the time from
# startScanning() to scanFinish(), and from Back to backToMain(). Then times
# tallyroot-scan on the same tree and reports the ratio and the peak memory.
set -euo pipefail
cd "$(dirname "$0")/.."
tree=${1:-/tmp/tallyroot-bench-tree}
source bench/common.sh
prepare "$tree" tallyroot-scan tallyroot-results-bench

build/bench/tallyroot-results-bench "$tree" >/dev/null 2>&1 # warm the cache
screen=$(for _ in $(seq $runs); do
    build/bench/tallyroot-results-bench "$tree" 2>/dev/null | grep '^results'
done | sort -k2 -n | sed -n "$(( (runs + 1) / 2 ))p")
results_seconds=$(awk '{ print $2 }' <<<"$screen")
read -r scan_seconds scan_kib < <(measure build/src/tallyroot-scan --defaults "$tree")

echo "tree:            $tree"
echo "results screen:  $screen (median of $runs)"
printf 'tallyroot-scan:  %.2f s  peak %d MiB\n' "$scan_seconds" $((scan_kib / 1024))
awk -v a="$results_seconds" -v b="$scan_seconds" 'BEGIN { printf "ratio:           %.2f x tallyroot-scan\n", a / b }'
