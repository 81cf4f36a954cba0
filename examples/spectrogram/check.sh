#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh PROGRAM: bad input gives one line and exit status 2; a recording gives a picture, and what was done to it is
# said.
source "$(dirname "$0")/../common/check.sh"

# tone FILE SAMPLES: a square wave.
tone() {
    for ((i = 0; i < $2; i += 8)); do
        printf '\x00\x20\x00\x20\x00\x20\x00\x20\x00\xe0\x00\xe0\x00\xe0\x00\xe0'
    done | wav "$1" "$2"
}

refused "no such file" "$folder/absent.wav" "$folder/none.png"
echo "words, not sound" >"$folder/text.wav"
refused "not a recording" "$folder/text.wav" "$folder/none.png"
refused "the recording's name is empty" "" "$folder/none.png"
refused "is a folder, not a recording" "$folder" "$folder/none.png"
tone "$folder/short.wav" 63
refused "too short" "$folder/short.wav" "$folder/none.png"
tone "$folder/empty.wav" 0
refused "too short" "$folder/empty.wav" "$folder/none.png"
refused "not expected: --colour" "$folder/short.wav" "$folder/none.png" --colour
refused "not expected: third" "$folder/short.wav" "$folder/none.png" third
for band in loud 99 nan inf ""; do
    refused "--band" --band "$band" "$folder/short.wav" "$folder/none.png"
done

for samples in 64 65 4000; do
    tone "$folder/tone.wav" "$samples"
    runs "$folder/tone.wav"
    [[ $(od -An -tx1 -j16 -N8 "$folder/picture.png" | tr -d ' \n') == 0000064000000384 ]] || fail "$samples samples: size"
done
pictures "$folder/tone.wav"

# What was done to the recording.
says() { grep -q -e "$1" "$folder/out" || fail "no '$1': $(cat "$folder/out")"; }
runs "$folder/tone.wav"
says "^recording: tone (8 kHz, mono, 0.5 s)$"
says "^shown: the whole band of 4 kHz, not resampled$"
says "^transforms: [0-9 ]* of 64 samples (Hann window, hop 2, 125 Hz a row), [0-9]* ns each in batches, [0-9]* ns by a loop"
says "^levels: .* at most -[0-9.]* dB, at 1 kHz and "
says "^picture: $folder/picture.png$"
runs --band 1000 "$folder/tone.wav"
says "^shown: 0 to 1 kHz of 4, resampled to 2.222 kHz$"
wav "$folder/silence.wav" 1000 </dev/zero
runs "$folder/silence.wav"
says "^levels: silence$"
finish
