#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh PROGRAM SOURCE PAGE: the program prints what stands in the .txt beside its source; the source has, behind the
# line of its licence, at most twenty lines, and the page shows both as they are.
set -u
program=$1 source=$2 page=$3
expected=${source%.*}.txt
fail() {
    echo "FAILED: $*"
    exit 1
}
printed=$("$program"; echo "status $?")
[[ $printed == "$(cat "$expected"; echo "status 0")" ]] || fail "prints: $printed"
code=$(tail -n +2 "$source")
[[ $(wc -l <<<"$code") -le 20 ]] || fail "more than twenty lines"
shown=$(cat "$page")
for text in "$code" "$(cat "$expected")"; do
    [[ $shown == *'```'*$'\n'"$text"$'\n''```'* ]] || fail "$page does not show as it is: $text"
done
echo "as it should be"
