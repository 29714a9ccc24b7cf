# Shared by the benchmark scripts: builds what they run, makes the tree once,
# and times commands. Source it from the repository root.

runs=3

# prepare TREE TARGET...: installs time, builds the targets, makes the tree.
prepare() {
    local tree=$1; shift
    command -v /usr/bin/time >/dev/null 2>&1 || {
        echo "Installing time"; DEBIAN_FRONTEND=noninteractive apt-get install -y -qq time >/dev/null; }
    cmake -S . -B build -G Ninja >/dev/null
    cmake --build build --target tallyroot-maketree "$@" >/dev/null
    if [ ! -f "$tree.done" ]; then
        echo "Making the tree in $tree (once)..."
        rm -rf "$tree"
        build/bench/tallyroot-maketree "$tree"
        touch "$tree.done"
    fi
}

# median: the middle line of its input, sorted by the first number.
median() {
    sort -n | sed -n "$(( (runs + 1) / 2 ))p"
}

# measure COMMAND...: "seconds peak-KiB" of the median of $runs runs, after one
# run that warms the cache.
measure() {
    "$@" >/dev/null 2>&1
    for _ in $(seq $runs); do
        /usr/bin/time -f "%e %M" "$@" 2>&1 >/dev/null | tail -n 1
    done | median
}

# Cold runs need the page cache dropped, which only root may do.
can_drop_caches() {
    [ "$(id -u)" -eq 0 ] && { sync; echo 3 > /proc/sys/vm/drop_caches; } 2>/dev/null
}

# measure_cold COMMAND...: as measure, with the page cache dropped before each run.
measure_cold() {
    for _ in $(seq $runs); do
        can_drop_caches
        /usr/bin/time -f "%e %M" "$@" 2>&1 >/dev/null | tail -n 1
    done | median
}

# ratio A B: A / B with two decimals.
ratio() {
    awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'
}
