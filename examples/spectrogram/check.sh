#!/usr/bin/env bash
# check.sh PROGRAM: bad input gives one line and exit status 2; a recording gives a picture.
set -u
program=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

fail() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

# refused NAME WORDS ARGUMENTS...: exit status 2, and a single line on stderr that holds the words.
refused() {
    local name=$1 words=$2 status
    shift 2
    "$program" "$@" >/dev/null 2>"$folder/err"
    status=$?
    [[ $status == 2 ]] || fail "$name: exit status $status"
    [[ $(wc -l <"$folder/err") == 1 ]] || fail "$name: not one line: $(cat "$folder/err")"
    grep -q "$words" "$folder/err" || fail "$name: $(cat "$folder/err")"
    [[ ! -e $folder/none.png ]] || fail "$name: wrote a picture"
}

# tone FILE SAMPLES: a WAV of 16-bit samples at 8 kHz, a square wave.
tone() {
    local file=$1 samples=$2 bytes=$(($2 * 2))
    le32() { printf "\\x$(printf %02x $(($1 & 255)))\\x$(printf %02x $(($1 >> 8 & 255)))\\x$(printf %02x $(($1 >> 16 & 255)))\\x$(printf %02x $(($1 >> 24 & 255)))"; }
    {
        printf RIFF; le32 $((bytes + 36)); printf 'WAVEfmt '; le32 16
        printf '\x01\x00\x01\x00'; le32 8000; le32 16000; printf '\x02\x00\x10\x00'
        printf data; le32 "$bytes"
        for ((i = 0; i < samples; i += 8)); do
            printf '\x00\x20\x00\x20\x00\x20\x00\x20\x00\xe0\x00\xe0\x00\xe0\x00\xe0' | head -c $(((samples - i < 8 ? samples - i : 8) * 2))
        done
    } >"$file"
}

refused "missing file" "no such file" "$folder/absent.wav" "$folder/none.png"
echo "words, not sound" >"$folder/text.wav"
refused "no recording" "not a recording" "$folder/text.wav" "$folder/none.png"
refused "a folder" "not a recording" "$folder" "$folder/none.png"
tone "$folder/short.wav" 63
refused "63 samples" "too short" "$folder/short.wav" "$folder/none.png"
tone "$folder/empty.wav" 0
refused "no samples" "too short" "$folder/empty.wav" "$folder/none.png"
refused "unknown option" "unknown option" --colour
refused "band" "frequency" --band loud "$folder/short.wav" "$folder/none.png"

for samples in 64 65 4000; do
    tone "$folder/tone.wav" "$samples"
    "$program" "$folder/tone.wav" "$folder/tone.png" >"$folder/out" 2>&1 || fail "$samples samples: $(cat "$folder/out")"
    [[ $(head -c 8 "$folder/tone.png" | od -An -tx1 | tr -d ' \n') == 89504e470d0a1a0a ]] || fail "$samples samples: no PNG"
    [[ $(od -An -tx1 -j16 -N8 "$folder/tone.png" | tr -d ' \n') == 0000064000000384 ]] || fail "$samples samples: size"
    rm -f "$folder/tone.png"
done

"$program" "$folder/tone.wav" "$folder/absent/tone.png" >/dev/null 2>"$folder/err" && fail "a folder that does not exist"
[[ $(wc -l <"$folder/err") == 1 ]] || fail "unwritable picture: not one line"

[[ $failures == 0 ]] && echo "all as it should be"
exit $((failures > 0))
