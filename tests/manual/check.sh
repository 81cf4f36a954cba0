#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh OVERVIEW EXPORTS BATCH_LIBRARY: the manual pages, of which OVERVIEW is the one in man7, have no fault, and every
# exported name of the two libraries leads to a page that shows it.
set -euo pipefail
folder=$(dirname "$(dirname "$1")") exports=$2 batch=$3
fail() {
    echo "FAILED: $*"
    exit 1
}
mapfile -t pages < <(grep -rlE '^\.Dt ' "$folder" | sort)
[[ ${#pages[@]} == 9 ]] || fail "${#pages[@]} pages: ${pages[*]}"
mandoc -T lint -W warning "${pages[@]}" || fail "mandoc complains"
for page in "${pages[@]}"; do
    said=$(MANROFFOPT="-ww -rHY=0" man --warnings -l "$page" 2>&1 >/dev/null)
    [[ -z $said ]] || fail "man complains of $page: $said"
done

# shown NAME...: each name's file leads to a page in which it stands.
checked=0
shown() {
    local name file
    for name in "$@"; do
        file=$folder/man3/$name.3
        [[ -f $file ]] || fail "no page for $name"
        if IFS= read -r line <"$file" && [[ $line == .so\ * ]]; then
            file=$folder/${line#.so }
            [[ -f $file ]] || fail "$name leads to $line, which is not there"
        fi
        [[ ${text[$file]:=$(tr -s ' ,' '\n' <"$file")} == *$'\n'"$name"$'\n'* ]] || fail "$file does not show $name"
        checked=$((checked + 1))
    done
}
declare -A text
mapfile -t names < <(cat "$exports"; nm -D --defined-only "$batch" | awk '{ print $3 }')
shown "${names[@]}"
((checked > 1193)) || fail "only $checked names"
echo "${#pages[@]} pages, $checked names"
