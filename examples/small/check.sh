#!/usr/bin/env bash
# check.sh PROGRAM SOURCE PAGE: the program prints what stands in the .txt beside its source; the source has at most
# twenty lines, and the page shows both as they are.
set -u
program=$1 source=$2 page=$3
expected=${source%.*}.txt
fail() {
    echo "FAILED: $*"
    exit 1
}
printed=$("$program"; echo "status $?")
[[ $printed == "$(cat "$expected"; echo "status 0")" ]] || fail "prints: $printed"
[[ $(wc -l <"$source") -le 20 ]] || fail "more than twenty lines"
shown=$(cat "$page")
for file in "$source" "$expected"; do
    [[ $shown == *'```'*$'\n'"$(cat "$file")"$'\n''```'* ]] || fail "$page does not show $file as it is"
done
echo "as it should be"
