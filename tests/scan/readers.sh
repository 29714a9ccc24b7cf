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
"$scan" --defaults --threads 1 --json "$work/1.json" "$work/tree"
for readers in 8 32; do
    "$scan" --defaults --threads $readers --json "$work/$readers.json" "$work/tree"
    if cmp -s "$work/1.json" "$work/$readers.json"; then
        passed=$((passed + 1))
    else
        echo "the JSON of 1 and $readers readers differs"
        failed=$((failed + 1))
    fi
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
