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

# measure COMMAND...: "seconds peak-KiB" of the median of $runs runs, after one
# run that warms the cache.
measure() {
    "$@" >/dev/null 2>&1
    for _ in $(seq $runs); do
        /usr/bin/time -f "%e %M" "$@" 2>&1 >/dev/null | tail -n 1
    done | sort -n | sed -n "$(( (runs + 1) / 2 ))p"
}
