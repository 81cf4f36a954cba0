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
sources=()
for file in "${files[@]}"; do
    [[ -f $file ]] || continue # removed, and not yet committed
    case ${file##*/} in
        *.cpp | *.hpp | *.c | *.h | *.S | *.sh | *.py | *.js | *.css | *.cmake | *.in | *.map | CMakeLists.txt) ;;
        *.*) continue ;;
        *) # a script, or no source
            first=
            read -rN 2 first <"$file" 2>/dev/null || true
            [[ $first == '#!' ]] || continue
            ;;
    esac
    sources+=("$file")
done
checked=${#sources[@]}
((checked > 500)) || fail "only $checked source files found"
missing=$(awk -v line="(^|[ /#*])$line( \\*/)?$" '
    FNR == 1 { if (file != "" && !found) print file; file = FILENAME; found = 0 }
    FNR <= 3 && $0 ~ line { found = 1 }
    END { if (!found) print file }' "${sources[@]}")
[[ -z $missing ]] || fail "no line '$line': $missing"
echo "all $checked source files are under $name"
