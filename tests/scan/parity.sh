#!/usr/bin/env bash
# The engine's totals against an independent walk: bytes as du -sb -l counts
# them (less each folder's own size, which the engine leaves out), bytes on
# disk as du -sB1 counts them (blocks allocated, each hard-linked file once,
# folders' own blocks too) and every entry that is not a folder as find lists
# them, on a tree of awkward cases.
#   parity.sh TALLYROOT-SCAN
set -euo pipefail
scan=$1
work=$(mktemp -d /tmp/tallyroot-parity.XXXXXX)
trap 'chmod -R u+rwx "$work" 2>/dev/null; rm -rf "$work"' EXIT
chmod 755 "$work"
t=$work/tree
mkdir -p "$t"/{empty,links,names,sparse,locked/inside}

printf '0123456789' > "$t/links/original"
ln "$t/links/original" "$t/links/hardlink"            # every link counts its size, not its blocks
head -c 50000 /dev/zero > "$t/names/blocks"
ln "$t/names/blocks" "$t/links/blocks-again"          # met second: no blocks counted
ln -s original "$t/links/to-file"
ln -s ../names "$t/links/to-folder"                    # never entered
ln -s loop "$t/links/loop"
ln -s /nonexistent "$t/links/dangling"
mkfifo "$t/links/fifo"
truncate -s 5G "$t/sparse/five-gigabytes.iso"
truncate -s 1 "$t/sparse/one"
for name in 'a:b' 'semi;colon' 'many.dots.in.name.tar.gz' 'nodot' '.hidden' \
            $'\xc3\x9cbung' $'bad\xffutf8.txt' 'space name.pdf'; do
    printf 'x%.0s' $(seq 1 ${#name}) > "$t/names/$name"
done
mkdir "$t/names/"$'dir\xfe'
printf 'abc' > "$t/names/"$'dir\xfe/inner'
printf 'secret' > "$t/locked/inside/file"
printf 'visible' > "$t/locked/file"
chmod 000 "$t/locked/inside"
# 1,500 folders deep, made 100 levels at a time so that no path given is long.
hundred=$(printf 'n/%.0s' $(seq 100))
( cd "$t" && mkdir deep && cd deep && for _ in $(seq 15); do mkdir -p "$hundred" && cd "$hundred"; done &&
  printf 'leaf' > leaf )

run() { "$@"; }
if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null; then
    # Root reads every folder; as nobody the locked one really is unreadable.
    run() { setpriv --reuid=65534 --regid=65534 --clear-groups "$@"; }
fi

summary=$(run "$scan" --defaults "$t" 2>/dev/null)
engine_files=$(sed -E 's/.* ([0-9]+) files.*/\1/' <<<"$summary")
engine_bytes=$(sed -E 's/.* ([0-9]+) bytes.*/\1/' <<<"$summary")
engine_on_disk=$(sed -E 's/.* ([0-9]+) on disk.*/\1/' <<<"$summary")
du_bytes=$(run du -sbl -x "$t" 2>/dev/null | cut -f1 || true)
du_on_disk=$(run du -sB1 -x "$t" 2>/dev/null | cut -f1 || true)
folder_bytes=$(run find "$t" -xdev -type d -printf '%s\n' 2>/dev/null | awk '{ s += $1 } END { print s }' || true)
find_files=$(run find "$t" -xdev ! -type d 2>/dev/null | wc -l || true)

echo "engine: $summary"
echo "du -sb -l less folder sizes: $((du_bytes - folder_bytes)) bytes; du -sB1: $du_on_disk on disk; find: $find_files files"
passed=0 failed=0
check() { if [ "$2" -eq "$3" ]; then passed=$((passed + 1)); else echo "$1 differ"; failed=$((failed + 1)); fi; }
check bytes "$engine_bytes" $((du_bytes - folder_bytes))
check "bytes on disk" "$engine_on_disk" "$du_on_disk"
check "file counts" "$engine_files" "$find_files"

# The same result, byte for byte, whether the walk reads alone or readers read ahead.
out=$work/json && mkdir "$out" && chmod 777 "$out"
for readers in 1 2 8 32; do
    run "$scan" --defaults --threads $readers --json "$out/$readers.json" "$t" >/dev/null 2>&1
    # The moment of the scan is the one thing two scans never share.
    sed -i 's/"scanned":"[^"]*"//' "$out/$readers.json"
done
check "JSON of 1 and 2 readers" "$(cmp -s "$out/1.json" "$out/2.json"; echo $?)" 0
check "JSON of 1 and 8 readers" "$(cmp -s "$out/1.json" "$out/8.json"; echo $?)" 0
check "JSON of 1 and 32 readers" "$(cmp -s "$out/1.json" "$out/32.json"; echo $?)" 0
check "unreadable folders in the JSON" "$(grep -c '"unreadable":\[".*locked/inside"\]' "$out/1.json")" \
      "$([ "$(id -u)" -ne 0 ] || command -v setpriv >/dev/null && echo 1 || echo 0)"

# A folder that may be listed but not searched: its names show, nothing about
# them does. As nobody it is not read in full, and says so.
if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null; then
    mkdir -p "$work/listable/names" && printf 'abc' > "$work/listable/names/file"
    chmod 755 "$work/listable" && chmod 744 "$work/listable/names"
    summary=$(run "$scan" --defaults "$work/listable" 2>/dev/null)
    check "a folder listed but not searched, unreadable" \
          "$(grep -c 'unreadable folders: 1$' <<<"$summary")" 1
else
    echo "a folder listed but not searched: skipped (needs root to act as another user)"
fi
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
