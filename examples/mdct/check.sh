#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh PROGRAM: a recording comes back but for rounding, at every size; bad input gives one line
# and exit status 2.
source "$(dirname "$0")/../common/check.sh"

refused "no such file" "$folder/absent.wav" "$folder/none.png"
refused "the recording's name is empty" "" "$folder/none.png"
refused "is a folder, not a recording" "$folder" "$folder/none.png"
echo "words, not sound" >"$folder/text.wav"
refused "not a recording" "$folder/text.wav" "$folder/none.png"
wav "$folder/empty.wav" 0 </dev/null
refused "no samples" "$folder/empty.wav" "$folder/none.png"
wav "$folder/noise.wav" 5000 </dev/urandom
refused "not expected: --loud" --loud "$folder/noise.wav" "$folder/none.png"
for size in 3 0 2 100 131072 many -4 ""; do
    refused "power of two" --size "$size" "$folder/noise.wav" "$folder/none.png"
done

for size in 4 8 32 64 1024 16384; do
    runs --size $size "$folder/noise.wav"
    grep -q '^binary32: largest error [0-9.]*e-0[678],' "$folder/out" || fail "size $size: $(cat "$folder/out")"
    grep -q '^binary64: largest error [0-9.]*e-1[567],' "$folder/out" || fail "size $size: $(cat "$folder/out")"
done
pictures "$folder/noise.wav"
wav "$folder/silence.wav" 1000 </dev/zero
runs "$folder/silence.wav"
grep -q '^binary64: largest error 0, exact$' "$folder/out" || fail "silence: $(cat "$folder/out")"
finish
