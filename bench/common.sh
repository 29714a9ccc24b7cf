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

# summary: of lines "seconds peak-KiB", the median run's two figures, then the
# fewest and the most seconds of all runs.
summary() {
    sort -n | awk '{ s[NR] = $1; k[NR] = $2 }
        END { m = int((NR + 1) / 2); print s[m], k[m], s[1], s[NR] }'
}

# measure COMMAND...: "seconds peak-KiB min max" (see summary) of $runs runs,
# after one run that warms the cache.
measure() {
    "$@" >/dev/null 2>&1
    for _ in $(seq $runs); do
        /usr/bin/time -f "%e %M" "$@" 2>&1 >/dev/null | tail -n 1
    done | summary
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
    done | summary
}

# report LABEL SECONDS KIB MIN MAX DU-SECONDS: a line of the median time, its
# range, the ratio to du's median (and of the range), and the peak memory.
report() {
    printf '%-34s %6.2f s (%.2f-%.2f)  %s x du (%s-%s)  peak %4d MiB\n' "$1" "$2" "$4" "$5" \
        "$(ratio "$2" "$6")" "$(ratio "$4" "$6")" "$(ratio "$5" "$6")" $(($3 / 1024))
}

# ratio A B: A / B with two decimals.
ratio() {
    awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'
}
