#!/usr/bin/env bash
# Readers ahead of the walk change nothing: on a generated tree of some
# thousands of folders, tallyroot-scan writes the same JSON byte for byte with
# one thread and with eight readers. Under ThreadSanitizer this is where the
# readers and the walk meet most.
#   readers.sh TALLYROOT-SCAN TALLYROOT-MAKETREE
set -euo pipefail
scan=$1 maketree=$2
work=$(mktemp -d /tmp/tallyroot-readers.XXXXXX)
trap 'rm -rf "$work"' EXIT
"$maketree" "$work/tree" 20000 3000 9 >/dev/null
"$scan" --defaults --threads 1 --json "$work/1.json" "$work/tree"
"$scan" --defaults --threads 8 --json "$work/8.json" "$work/tree"
if cmp -s "$work/1.json" "$work/8.json"; then
    echo "1 passed, 0 failed"
else
    echo "the JSON of 1 and 8 readers differs"
    echo "0 passed, 1 failed"
    exit 1
fi
