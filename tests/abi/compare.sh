#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# compare.sh SOURCE COMPILER [--write]: the binary interface that the headers describe is the kept one, tests/abi/kept.xml,
# or it becomes that. Two headers with a fault show that differences are seen.
set -euo pipefail
source=$1 cc=$2
kept=$source/tests/abi/kept.xml
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
    echo "FAILED: $*"
    exit 1
}
command -v abidiff >/dev/null || fail "no abidiff (package abigail-tools)"

# described INCLUDE OUT: the interface as a shared object with debug information.
described() { "$cc" -std=c99 -g -O0 -fPIC -shared -fno-eliminate-unused-debug-types -I"$1" "$source/tests/abi/stub.c" -o "$2"; }

mkdir "$folder/include"
described "$source/include" "$folder/abi.so"
if [[ ${3:-} == --write ]]; then
    abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed "$folder/abi.so" |
        sed "s|$source/||g; s|$folder/||g" >"$folder/kept.xml"
    mv "$folder/kept.xml" "$kept"
    exit
fi
abidiff "$kept" "$folder/abi.so" || fail "the binary interface is another one (where it is meant to be: ./dev abi)"

# with_fault EXPRESSION: the difference that sed's expression makes in a header is found.
with_fault() {
    local header
    for header in orvgen.h orvgen_batch.h; do sed "$1" "$source/include/$header" >"$folder/include/$header"; done
    ! diff -q "$source/include" "$folder/include" >"$folder/changed" || fail "no header has: $1"
    grep -q ' differ$' "$folder/changed" || fail "no header has: $1"
    described "$folder/include" "$folder/fault.so" 2>"$folder/log" || fail "$(cat "$folder/log")"
    ! abidiff "$kept" "$folder/fault.so" >"$folder/log" || fail "not seen: $1"
}
with_fault 's/char cpuTag\[8\]/char cpuTag[16]/'
with_fault 's/^typedef int32_t OrvStatus;/typedef int64_t OrvStatus;/'
echo "the binary interface is the kept one"
