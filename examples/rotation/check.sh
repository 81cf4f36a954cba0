#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh PROGRAM: bad input gives one line and exit status 2; recordings give a table, whose rows find more once turned.
source "$(dirname "$0")/../common/check.sh"

refused "no such file" "$folder/absent.wav"
[[ -z $("$program" "$folder/absent.wav" 2>/dev/null) ]] || fail "a table of nothing"
wav "$folder/short.wav" 4000 </dev/zero
refused "too short" "$folder/short.wav"
for sizes in 0 31 words 16416 100000; do
    refused "\\(--sizes\\|no rotation\\|too short\\)" --sizes "$sizes" -- "$folder/short.wav"
done

"$program" --sizes 384 >"$folder/out" 2>&1 || fail "$(cat "$folder/out")"
awk '$1 == 384 && NF == 10 { ++rows; for (i = 3; i < 9; i += 2) gains += $(i + 1) > $i; faster = $9 > $10 }
     END { exit !(rows == 1 && gains >= 2 && faster) }' "$folder/out" || fail "$(cat "$folder/out")"
finish
