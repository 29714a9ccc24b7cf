#!/usr/bin/env bash
# Where size and depth cost: du -sb -l, tallyroot-scan (with --json) and the
# results screen (with the map, then Back), one run each, time and peak memory.
#
#   bench/scale-bench.sh            both trees below
#   bench/scale-bench.sh wide       10,000,000 entries: 9,000,000 sparse files in
#                                   1,000,000 folders, depth up to 12 (made once,
#                                   in /tmp/tallyroot-bench-10m; about 10 minutes
#                                   and 10 million inodes)
#   bench/scale-bench.sh deep       a chain of 20,000 nested folders with a file
#                                   every 100 levels (/tmp/tallyroot-bench-deep),
#                                   also under a 512 KiB stack
set -euo pipefail
cd "$(dirname "$0")/.."
source bench/common.sh
which=${1:-all}
command -v /usr/bin/time >/dev/null 2>&1 || {
    echo "Installing time"; DEBIAN_FRONTEND=noninteractive apt-get install -y -qq time >/dev/null; }
cmake -S . -B build -G Ninja >/dev/null
cmake --build build --target tallyroot-maketree tallyroot-scan tallyroot-results-bench >/dev/null
scan=build/src/tallyroot-scan
results=build/bench/tallyroot-results-bench
json=$(mktemp -d /tmp/tallyroot-scale-json.XXXXXX)
trap 'rm -rf "$json"' EXIT

# once LABEL COMMAND...: one run, "LABEL  seconds  peak".
once() {
    local label=$1; shift
    /usr/bin/time -f "%e %M" "$@" 2>&1 >/dev/null | tail -n 1 |
        awk -v label="$label" '{ printf "  %-34s %7.2f s  peak %6d MiB\n", label, $1, $2 / 1024 }'
}

screen() { # TREE: the results screen's own figures, with the map
    "$results" --map "$1" 2>/dev/null | sed 's/^/  results screen: /'
}

if [ "$which" = all ] || [ "$which" = wide ]; then
    tree=/tmp/tallyroot-bench-10m
    if [ ! -f "$tree.done" ]; then
        echo "Making $tree (once)..."
        rm -rf "$tree"
        build/bench/tallyroot-maketree "$tree" 9000000 1000000 12
        touch "$tree.done"
    fi
    du -sbl -x "$tree" >/dev/null # warm the cache
    echo "wide: $tree, 10,000,000 entries, warm"
    once "du -sb -l" du -sbl -x "$tree"
    once "tallyroot-scan" "$scan" --defaults "$tree"
    once "tallyroot-scan --json" "$scan" --defaults --json "$json/wide.json" "$tree"
    once "results screen, map and Back" "$results" --map "$tree"
    screen "$tree"
fi

if [ "$which" = all ] || [ "$which" = deep ]; then
    tree=/tmp/tallyroot-bench-deep
    if [ ! -f "$tree.done" ]; then
        echo "Making $tree (once)..."
        rm -rf "$tree"
        build/bench/tallyroot-maketree --chain "$tree" 20000
        touch "$tree.done"
    fi
    echo "deep: $tree, 20,000 levels, 20,200 entries, warm"
    once "du -sb -l" du -sbl -x "$tree"
    once "tallyroot-scan" "$scan" --defaults "$tree"
    once "tallyroot-scan --json" "$scan" --defaults --json "$json/deep.json" "$tree"
    echo "  (JSON: $(stat -c %s "$json/deep.json") bytes, every folder's path written out)"
    once "results screen, map and Back" "$results" --map "$tree"
    screen "$tree"
    once "tallyroot-scan --json, 512 KiB stack" bash -c \
        "ulimit -s 512 && exec $scan --defaults --json $json/deep512.json $tree"
    once "results screen, 512 KiB stack" bash -c "ulimit -s 512 && exec $results --map $tree"
fi
