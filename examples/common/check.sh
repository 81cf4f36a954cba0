# SPDX-License-Identifier: MIT
# Sourced by the examples' checks, with the program as $1: counts failures, keeps files in $folder.
# shellcheck shell=bash
set -u
program=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

fail() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

# one_line STATUS WORDS ARGUMENTS...: the exit status, one line on stderr that holds the words, no picture.
one_line() {
    local expected=$1 words=$2 status
    shift 2
    "$program" "$@" >/dev/null 2>"$folder/err"
    status=$?
    [[ $status == "$expected" ]] || fail "$*: exit status $status"
    [[ $(wc -l <"$folder/err") == 1 ]] || fail "$*: not one line: $(cat "$folder/err")"
    grep -q -e "$words" "$folder/err" || fail "$*: $(cat "$folder/err")"
    [[ ! -e $folder/none.png ]] || fail "$*: wrote a picture"
}
refused() { one_line 2 "$@"; }

# runs ARGUMENTS...: exit status 0, a PNG in picture.png (named behind the arguments), the rest in out.
runs() {
    rm -f "$folder/picture.png"
    "$program" "$@" "$folder/picture.png" >"$folder/out" 2>&1 || fail "$*: $(cat "$folder/out")"
    [[ $(head -c 8 "$folder/picture.png" | od -An -tx1 | tr -d ' \n') == 89504e470d0a1a0a ]] || fail "$*: no PNG"
}

# wav FILE SAMPLES: the 16-bit samples of stdin as a WAV at 8 kHz.
wav() {
    local bytes=$(($2 * 2))
    le32() { printf "\\x$(printf %02x $(($1 & 255)))\\x$(printf %02x $(($1 >> 8 & 255)))\\x$(printf %02x $(($1 >> 16 & 255)))\\x$(printf %02x $(($1 >> 24 & 255)))"; }
    {
        printf RIFF; le32 $((bytes + 36)); printf 'WAVEfmt '; le32 16
        printf '\x01\x00\x01\x00'; le32 8000; le32 16000; printf '\x02\x00\x10\x00'
        printf data; le32 "$bytes"
        head -c "$bytes"
    } >"$1"
}

# pictures ARGUMENTS...: the program writes its picture, named behind the arguments, in the format of the extension, and
# says before its work or after it why it cannot.
pictures() {
    local name
    for name in a.svg a.pdf a.PNG; do
        "$program" "$@" "$folder/$name" >/dev/null 2>"$folder/err" || fail "$*: $(cat "$folder/err")"
    done
    [[ $(head -c 5 "$folder/a.svg") == "<?xml" ]] || fail "$*: no SVG"
    grep -q '</svg>' "$folder/a.svg" || fail "$*: half an SVG"
    [[ $(head -c 5 "$folder/a.pdf") == "%PDF-" ]] || fail "$*: no PDF"
    for name in a.jpg a none.png.gif; do
        refused "is written as .png, .svg or .pdf" "$@" "$folder/$name"
        [[ ! -e $folder/$name ]] || fail "wrote $name"
    done
    refused "the picture's name is empty" "$@" ""
    mkdir "$folder/folder.png"
    refused "is a folder, not a picture" "$@" "$folder/folder.png"
    refused "there is no folder" "$@" "$folder/absent/a.png"
    ln -s /dev/full "$folder/full.png"
    one_line 1 "No space left on device" "$@" "$folder/full.png"
    # Beside the caller's other files, and nothing else.
    mkdir "$folder/here"
    (cd "$folder/here" && "$program" "$@" a.png >/dev/null 2>&1) || fail "$*: in its folder"
    [[ $(ls "$folder/here") == a.png ]] || fail "$*: not in the caller's folder"
}

finish() {
    "$program" --help >/dev/full 2>"$folder/err"
    [[ $? == 1 && $(wc -l <"$folder/err") == 1 ]] || fail "--help onto a full device: $(cat "$folder/err")"
    [[ $failures == 0 ]] && echo "all as it should be"
    exit $((failures > 0))
}
