#!/usr/bin/env bash
# check.sh PROGRAM: a recording comes back but for rounding, at every size; bad input gives one line
# and exit status 2.
set -u
program=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

fail() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

# refused WORDS ARGUMENTS...: exit status 2, one line on stderr that holds the words, no picture.
refused() {
    local words=$1 status
    shift
    "$program" "$@" >/dev/null 2>"$folder/err"
    status=$?
    [[ $status == 2 ]] || fail "$*: exit status $status"
    [[ $(wc -l <"$folder/err") == 1 ]] || fail "$*: not one line: $(cat "$folder/err")"
    grep -q "$words" "$folder/err" || fail "$*: $(cat "$folder/err")"
    [[ ! -e $folder/none.png ]] || fail "$*: wrote a picture"
}

# noise FILE SAMPLES: a raw 16-bit WAV of random samples at 8 kHz.
noise() {
    local bytes=$(($2 * 2))
    le32() { printf "\\x$(printf %02x $(($1 & 255)))\\x$(printf %02x $(($1 >> 8 & 255)))\\x$(printf %02x $(($1 >> 16 & 255)))\\x$(printf %02x $(($1 >> 24 & 255)))"; }
    {
        printf RIFF; le32 $((bytes + 36)); printf 'WAVEfmt '; le32 16
        printf '\x01\x00\x01\x00'; le32 8000; le32 16000; printf '\x02\x00\x10\x00'
        printf data; le32 "$bytes"
        head -c "$bytes" /dev/urandom
    } >"$1"
}

refused "no such file" "$folder/absent.wav" "$folder/none.png"
echo "words, not sound" >"$folder/text.wav"
refused "not a recording" "$folder/text.wav" "$folder/none.png"
noise "$folder/empty.wav" 0
refused "no samples" "$folder/empty.wav" "$folder/none.png"
noise "$folder/noise.wav" 5000
refused "unknown option" --loud
for size in 3 0 2 100 131072 many ""; do
    refused "power of two" --size "$size" "$folder/noise.wav" "$folder/none.png"
done

for size in 4 8 32 64 1024 16384; do
    "$program" --size $size "$folder/noise.wav" "$folder/mdct.png" >"$folder/out" 2>&1 ||
        fail "size $size: $(cat "$folder/out")"
    grep -q '^binary32: largest error [0-9.]*e-0[678],' "$folder/out" || fail "size $size: $(cat "$folder/out")"
    grep -q '^binary64: largest error [0-9.]*e-1[567],' "$folder/out" || fail "size $size: $(cat "$folder/out")"
    [[ $(head -c 8 "$folder/mdct.png" | od -An -tx1 | tr -d ' \n') == 89504e470d0a1a0a ]] || fail "size $size: no PNG"
    rm -f "$folder/mdct.png"
done

[[ $failures == 0 ]] && echo "all as it should be"
exit $((failures > 0))
