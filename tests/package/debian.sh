#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# debian.sh PACKAGES BIN: the Debian packages as files: what lintian says, what is in them, and the digests and the machine
# code of the libraries in them.
set -euo pipefail
packages=$(realpath "$1") bin=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
    echo "FAILED: $*"
    exit 1
}

lintian --fail-on error,warning --tag-display-limit 0 "$packages"/*.deb || fail "lintian"
for package in "$packages"/*.deb; do
    [[ $package == *-dbgsym_* ]] || dpkg-deb -x "$package" "$folder"
done
libraries=$folder/usr/lib/x86_64-linux-gnu
second=$libraries/glibc-hwcaps/x86-64-v3
while read -r file; do
    ! readelf -dW "$file" | grep -q 'RUNPATH\|RPATH' || fail "$file has a search path"
done < <(find "$folder" -name '*.so*' -type f)
[[ $(find "$folder" -name 'liborvgenm7.so.6.1' | wc -l) == 2 ]] || fail "not both builds"

export LD_LIBRARY_PATH=$libraries
"$bin/test_digests" "$libraries/liborvgenm7.so.6.1" >"$folder/log" || fail "$(cat "$folder/log")"
if /lib64/ld-linux-x86-64.so.2 --help | grep -q '^  x86-64-v3 (supported'; then
    "$bin/test_digests" "$second/liborvgenm7.so.6.1" >"$folder/log" || fail "$(cat "$folder/log")"
else
    echo "this processor is below x86-64-v3: the second build is not run"
fi
ORVGEN_SECOND_BUILD=$second/liborvgenm7.so.6.1 "$bin/test_second_build" --gtest_filter='SecondBuild.*' >"$folder/log" ||
    fail "$(cat "$folder/log")"
PYTHONPATH=$folder/usr/lib/python3/dist-packages debian/tests/python
echo "the packages are as they should be"
