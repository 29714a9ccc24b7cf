#!/usr/bin/env bash
# The scan engine against du on the same tree, in one run.
#
#   bench/scan-bench.sh [TREE]     (default /tmp/tallyroot-bench-tree)
#   BASELINE=REV bench/scan-bench.sh   also times tallyroot-scan as built at
#                                      git revision REV, for what a change costs
#   READERS="1 4 8 16 32"              the reader counts of the curve
#   PLAIN="4 8 16 32"                  the plain reader's thread counts
#
# Makes the tree on first use (1,000,000 sparse files in 100,000 folders, depth
# up to 12), then times three runs of each command and reports the median wall
# time with the range of the runs, the ratio to du's median and the peak
# memory: warm, and cold when the page cache can be dropped (as root). The
# curve is tallyroot-scan with each reader count of READERS and with its
# default readers, warm and cold, beside du and the plain reader (threads that
# list and add up, keeping nothing); warm also with --json. The JSON
# of 1, 2, 8 and 32 readers must be the same byte for byte.
#
# du -sb -l counts apparent sizes and every hard link, as the engine does; it
# also counts each folder's own size, which the engine leaves out, so those
# sizes are taken off before the totals are compared. Files are every entry
# that is not a folder.
set -euo pipefail
cd "$(dirname "$0")/.."
tree=${1:-/tmp/tallyroot-bench-tree}
source bench/common.sh
prepare "$tree" tallyroot-scan tallyroot-plainreader
scan=build/src/tallyroot-scan
json=$(mktemp -d /tmp/tallyroot-bench-json.XXXXXX)
trap 'rm -rf "$json"' EXIT
curve=(${READERS:-1 4 8 16 32})
# The plain reader at the counts where the disk's own curve is wanted.
plain=(${PLAIN:-4 8 16 32})
# The reader count the engine chooses for the disk that holds the tree.
default=$(QT_LOGGING_RULES="tallyroot.scan.debug=true" "$scan" --defaults "$tree" 2>&1 >/dev/null |
    sed -nE 's/^readers: ([0-9]+)$/\1/p')

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

# timed MEASURE LABEL COMMAND...: one line of the report, against du's median
# of the same kind ($du_median).
timed() {
    local how=$1 label=$2; shift 2
    local seconds kib least most
    read -r seconds kib least most < <("$how" "$@")
    report "  $label" "$seconds" "$kib" "$least" "$most" "$du_median"
}

# curve MEASURE: du, then tallyroot-scan with each reader count and the
# default, then the plain reader (what the disk gives, keeping nothing).
curve() {
    local how=$1 least most kib readers label
    read -r du_median kib least most < <("$how" du -sbl -x "$tree")
    report "  du -sb -l" "$du_median" "$kib" "$least" "$most" "$du_median"
    for readers in "${curve[@]}"; do
        label="tallyroot-scan --threads $readers"
        [ "$readers" != "$default" ] || label="$label (default)"
        timed "$how" "$label" "$scan" --defaults --threads "$readers" "$tree"
    done
    [[ " ${curve[*]} " == *" $default "* ]] ||
        timed "$how" "tallyroot-scan (default: $default)" "$scan" --defaults "$tree"
    for readers in "${plain[@]}"; do
        timed "$how" "plain reader, $readers threads" build/bench/tallyroot-plainreader \
            "$readers" "$tree"
    done
}

summary=$("$scan" --defaults "$tree" 2>/dev/null)
echo "tree:    $tree"
echo "engine:  $summary"
echo "readers: $default chosen for the disk"
echo "warm, median of $runs:"
curve measure
timed measure "tallyroot-scan --json" "$scan" --defaults --json "$json/default.json" "$tree"
if [ -n "$baseline" ]; then
    timed measure "tallyroot-scan at $BASELINE" "$baseline" --defaults "$tree"
fi
if can_drop_caches; then
    echo "cold (page cache dropped before each run), median of $runs:"
    curve measure_cold
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
same=1
for readers in 1 2 8 32; do
    "$scan" --defaults --threads $readers --json "$json/$readers.json" "$tree" >/dev/null
    cmp -s "$json/1.json" "$json/$readers.json" || same=0
done
if [ "$same" -eq 1 ]; then
    echo "json:    the same for 1, 2, 8 and 32 readers ($(stat -c %s "$json/1.json") bytes)"
else
    echo "json:    DIFFERS between 1, 2, 8 and 32 readers"; status=1
fi
exit $status
