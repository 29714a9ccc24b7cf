#!/usr/bin/env bash
# Checks that every C++ file in the repository is formatted as .clang-format
# says; lists the files that are not and fails.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h' 2>/dev/null ||
                     find src tests bench -name '*.cpp' -o -name '*.h')
unformatted=()
for file in "${files[@]}"; do
    clang-format --dry-run -Werror "$file" >/dev/null 2>&1 || unformatted+=("$file")
done
if [ ${#unformatted[@]} -gt 0 ]; then
    echo "Not formatted as .clang-format says (clang-format -i fixes them):"
    printf '  %s\n' "${unformatted[@]}"
    exit 1
fi
echo "Format: ${#files[@]} files as .clang-format says"
