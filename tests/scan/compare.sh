#!/usr/bin/env bash
# tallyroot-scan --compare on a small tree changed between two scans: the
# summary line, then the folders that grew most, in order, with exact
# figures; against a folder, a plain or gzip scan file, with --top and --json;
# a scan file that cannot be read fails with the reader's reason.
#   compare.sh TALLYROOT-SCAN
set -euo pipefail
scan=$1
work=$(mktemp -d /tmp/tallyroot-compare.XXXXXX)
trap 'rm -rf "$work"' EXIT
passed=0 failed=0
check() { # LABEL CONDITION...
    local label=$1; shift
    if "$@"; then passed=$((passed + 1)); else echo "$label: failed"; failed=$((failed + 1)); fi
}
same() { # LABEL EXPECTED ACTUAL
    if [ "$2" = "$3" ]; then passed=$((passed + 1)); else
        printf '%s: failed\n--- expected\n%s\n--- got\n%s\n' "$1" "$2" "$3"; failed=$((failed + 1)); fi
}
sized() { mkdir -p "$(dirname "$1")" && truncate -s "$2" "$1"; }

tree=$work/tree
sized "$tree/videos/a.mkv" 1000000
sized "$tree/docs/letter.txt" 5000
sized "$tree/docs/old/report.pdf" 70000
sized "$tree/music/song.mp3" 300000
"$scan" --defaults --json "$work/old.json" "$tree" >/dev/null

sized "$tree/videos/b.mkv" 2000000         # videos: +2000000, +1 file
sized "$tree/videos/holiday/c.mkv" 500000  # new, and videos +500000, +1 file
sized "$tree/docs/letter.txt" 6000         # docs: +1000
rm -r "$tree/docs/old"                     # docs: -70000, -1 file
sized "$tree/music/song.mp3" 300100        # music: +100
sized "$tree/music/new folder/x" 100       # new, and music +100, +1 file
sized "$tree/art/y" 100                    # new: ties with "new folder", comes first by path

t=$'\t'
listed="+2500000$t+2${t}grown$t$tree/videos
+500000$t+1${t}new$t$tree/videos/holiday
+200$t+1${t}grown$t$tree/music
+100$t+1${t}new$t$tree/art
+100$t+1${t}new$t$tree/music/new folder"
summary="$tree: +2431300 bytes, +3 files since $work/old.json (scanned "

output=$("$scan" --defaults --compare "$work/old.json" "$tree")
check "the summary comes first, with the total" grep -q "^$summary[0-9T:-]*Z)\$" <<<"$(head -n 1 <<<"$output")"
same "then the folders that grew, most first, ties by path" "$listed" "$(tail -n +2 <<<"$output")"

"$scan" --defaults --json "$work/new.json" "$tree" >/dev/null
output=$("$scan" --compare "$work/old.json" --top 2 "$work/new.json")
same "two scan files, the first two" "$(head -n 2 <<<"$listed")" "$(tail -n +2 <<<"$output")"

if command -v gzip >/dev/null; then
    gzip -c "$work/old.json" > "$work/old.json.gz"
    output=$("$scan" --compare "$work/old.json.gz" --top 0 "$work/new.json")
    check "a gzip scan file, the summary alone" grep -q "^$tree: +2431300 bytes, +3 files since" <<<"$output"
    check "and nothing after it" [ "$(wc -l <<<"$output")" -eq 1 ]
fi

"$scan" --defaults --compare "$work/old.json" --json "$work/again.json" "$tree" >/dev/null
check "--json keeps the newer scan" grep -q '"path":"'"$tree"'/videos/holiday"' "$work/again.json"

status=0
"$scan" --compare "$work/none.json" "$tree" >/dev/null 2>"$work/error" || status=$?
check "a missing scan file fails" [ "$status" -eq 1 ]
check "naming it" grep -q "$work/none.json could not be opened" "$work/error"

printf 'hello\n' > "$work/text.json"
status=0
"$scan" --compare "$work/old.json" "$work/text.json" >/dev/null 2>"$work/error" || status=$?
check "a newer file that is no scan fails" [ "$status" -eq 1 ]
check "saying so" grep -q "$work/text.json is not a Tallyroot scan" "$work/error"

status=0
"$scan" --compare "$work/old.json" --top many "$tree" >/dev/null 2>&1 || status=$?
check "--top takes a number" [ "$status" -eq 1 ]

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
