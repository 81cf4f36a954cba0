#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh PROGRAM: without noise every bit arrives, with noise as many go wrong as theory says; bad
# arguments give one line and exit status 2.
source "$(dirname "$0")/../common/check.sh"

for value in loud 61 -21 20dB nan inf ""; do
    refused "--snr: takes a number of decibels from -20 to 60, or the word none" "$folder/none.png" --snr "$value"
done
for option in --snr --symbols --seed; do
    refused "$option: its value is missing" "$folder/none.png" $option
done
for value in 0 -1 100001 many 1.5 1e3 ""; do
    refused "--symbols: takes a whole number from 1 to 100000" "$folder/none.png" --symbols "$value"
done
for value in -1 x 0.5; do
    refused "--seed: takes a whole number" "$folder/none.png" --seed "$value"
done
refused "--qpsk: takes no value" "$folder/none.png" --qpsk=3
refused "not expected: --loud" "$folder/none.png" --loud
refused "not expected" "$folder/none.png" "$folder/other.png"

# Nothing is left but rounding: the prefix has kept every echo out of the symbols.
for bits in 2 4; do
    for symbols in 1 2000; do
        options=(--snr none --symbols "$symbols")
        [[ $bits == 2 ]] && options+=(--qpsk)
        runs "${options[@]}"
        grep -q "^bit errors: 0 of $((symbols * 52 * bits)), rate 0\$" "$folder/out" || fail "no noise: $(cat "$folder/out")"
        awk '/^error vector/ { exit !($3 > 0 && $3 < 1e-3) }' "$folder/out" || fail "no noise: $(cat "$folder/out")"
    done
done

# The rate lies within a tenth of theory wherever some thousand errors are counted.
for arguments in "--snr 10" "--snr 15" "--snr 20" "--qpsk --snr 5" "--qpsk --snr 10"; do
    read -ra options <<<"$arguments"
    runs "${options[@]}"
    awk '/^bit errors/ { wrong = $3; rate = $NF }
         /^theory/ { theory = $2 }
         END { exit !(wrong > 2000 && rate > 0.9 * theory && rate < 1.1 * theory) }' "$folder/out" ||
        fail "$arguments: $(cat "$folder/out")"
done

pictures --symbols 10

# The same seed gives the same link, another seed another.
first=$("$program" --symbols 200 "$folder/picture.png")
[[ $("$program" --symbols 200 "$folder/picture.png") == "$first" ]] || fail "not the same twice"
[[ $("$program" --symbols 200 --seed 2 "$folder/picture.png") != "$first" ]] || fail "the seed changes nothing"

finish
