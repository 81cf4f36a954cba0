#!/usr/bin/env bash
# check.sh PROGRAM: without noise every bit arrives, with noise as many go wrong as theory says; bad
# arguments give one line and exit status 2.
source "$(dirname "$0")/../common/check.sh"

for value in loud 61 -21 20dB nan inf ""; do
    refused "--snr" "$folder/none.png" --snr "$value"
done
for value in 0 -1 100001 many 1.5 ""; do
    refused "--symbols" "$folder/none.png" --symbols "$value"
done
refused "--seed" "$folder/none.png" --seed
refused "--seed" "$folder/none.png" --seed -1
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

# The same seed gives the same link, another seed another.
first=$("$program" --symbols 200 "$folder/picture.png")
[[ $("$program" --symbols 200 "$folder/picture.png") == "$first" ]] || fail "not the same twice"
[[ $("$program" --symbols 200 --seed 2 "$folder/picture.png") != "$first" ]] || fail "the seed changes nothing"

finish
