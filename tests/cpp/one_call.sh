#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# one_call.sh SOURCE INCLUDE COMPILER...: what the functions of the source compile to, by each compiler: constants into
# registers, and one jump to the function that the name tells.
set -eu
source=$1 include=$2
shift 2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
    echo "FAILED: $*"
    exit 1
}
for compiler in "$@"; do
    "$compiler" -std=c++20 -O2 -I"$include" -c "$source" -o "$folder/one_call.o"
    objdump -dr --no-show-raw-insn "$folder/one_call.o" >"$folder/code"
    found=$(awk '
        /^[0-9a-f]+ <.*>:$/ { name = $2; gsub(/[<>:]/, "", name); sub(/^is_/, "", name); next }
        /R_X86_64_/ { target[name] = $NF; sub(/-0x4$/, "", target[name]); relocations[name]++; next }
        name && $2 == "jmp" { jumps[name]++; next }
        name && $2 == "endbr64" { next }
        name && $2 == "mov" && $3 ~ /^\$0x[0-9a-f]+,%e..$/ { next }
        name && $2 == "xor" && $3 ~ /^(%e..),\1$/ { next }
        name && $2 == "xor" { split($3, r, ","); if (r[1] == r[2]) next }
        name && $2 ~ /^(nop|nopw|nopl|cs|data16|xchg)$/ { next } # between functions
        name && NF > 0 { other[name] = other[name] " [" $0 "]" }
        END {
            for (name in relocations)
                print name, (target[name] == name && jumps[name] == 1 && relocations[name] == 1 && !other[name] ? "ok" : target[name] other[name])
        }' "$folder/code" | sort)
    [[ $(grep -c . <<<"$found") == $(grep -c '^Status is_' "$source") ]] || fail "$compiler: not all functions found: $found"
    ! grep -v ' ok$' <<<"$found" || fail "$compiler: more than one call: $(cat "$folder/code")"
    # Nothing else is named, so that a static program gets these functions and no others.
    undefined=$(nm -u "$folder/one_call.o" | awk '{ print $2 }' | sort)
    [[ $undefined == "$(awk '{ print $1 }' <<<"$found")" ]] || fail "$compiler: also named: $undefined"
    echo "$compiler: $(wc -l <<<"$found") functions, each one call"
done
