#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# licences.sh TREE: every source file names its licence, that of LICENSE, in one of its first three lines.
set -euo pipefail
cd "$1"
fail() {
    echo "FAILED: $*"
    exit 1
}
read -r name _ <LICENSE
line="SPDX-License-Identifier: $name"

if [[ -e .git ]]; then
    mapfile -t files < <(git -c safe.directory='*' ls-files --cached --others --exclude-standard)
else
    mapfile -t files < <(find . -path ./build -prune -o -type f -printf '%P\n')
fi
checked=0 missing=()
for file in "${files[@]}"; do
    [[ -f $file ]] || continue # removed, and not yet committed
    case $file in
        *.cpp | *.hpp | *.c | *.h | *.S | *.sh | *.py | *.js | *.css | *.cmake | *.in | *.map | */CMakeLists.txt | CMakeLists.txt) ;;
        *) [[ $(head -c 2 "$file" | tr -d '\0') == '#!' ]] || continue ;;
    esac
    checked=$((checked + 1))
    head -n 3 "$file" | grep -qE "(^|[ /#*])$line( \*/)?\$" || missing+=("$file")
done
[[ ${#missing[@]} == 0 ]] || fail "no line '$line': ${missing[*]}"
((checked > 500)) || fail "only $checked source files found"
echo "all $checked source files are under $name"
