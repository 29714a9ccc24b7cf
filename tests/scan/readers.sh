#!/usr/bin/env bash
# Readers ahead of the walk change nothing: on a generated tree of some
# thousands of folders, tallyroot-scan writes the same JSON byte for byte with
# one thread and with 8 or 32 readers. Under ThreadSanitizer this is where the
# readers and the walk meet most.
#   readers.sh TALLYROOT-SCAN TALLYROOT-MAKETREE
set -euo pipefail
scan=$1 maketree=$2
work=$(mktemp -d /tmp/tallyroot-readers.XXXXXX)
trap 'rm -rf "$work"' EXIT
"$maketree" "$work/tree" 20000 3000 9 >/dev/null
passed=0 failed=0
# The moment of the scan is the one thing two scans never share.
scan_json() { "$scan" --defaults --threads "$1" --json "$2" "$work/tree"; sed -i 's/"scanned":"[^"]*"//' "$2"; }
scan_json 1 "$work/1.json"
for readers in 8 32; do
    scan_json $readers "$work/$readers.json"
    if cmp -s "$work/1.json" "$work/$readers.json"; then
        passed=$((passed + 1))
    else
        echo "the JSON of 1 and $readers readers differs"
        failed=$((failed + 1))
    fi
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
