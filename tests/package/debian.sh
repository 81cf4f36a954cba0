#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# debian.sh PACKAGES BIN: the Debian packages as files: what lintian says, what is in them, and the digests and the machine
# code of the libraries in them.
set -euo pipefail
packages=$(realpath "$1") bin=$(realpath "$2")
tree=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
    echo "FAILED: $*"
    exit 1
}

lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$packages"/*.deb || fail "lintian"

for package in "$packages"/*.deb; do
    dpkg-deb -x "$package" "$folder"
done
for file in usr/include/orvgen.h usr/include/orvgen.hpp usr/include/orvgen/values.hpp usr/lib/x86_64-linux-gnu/liborvgenm7.a \
    usr/lib/x86_64-linux-gnu/liborvgenbatch.a usr/share/doc/orvgen/orvgen.cdx.json usr/share/man/man7/orvgen.7.gz \
    usr/share/man/man3/orvgHartley_9_64f.3.gz usr/share/doc/orvgen-doc/docs/images/speed.png; do
    [[ -f $(realpath "$folder/$file") ]] || fail "no $file"
done
searching=$(find "$folder" -name '*.so*' -type f -exec sh -c 'readelf -dW "$1" | grep -q "RUNPATH\|RPATH" && echo "$1"' - {} \;)
[[ -z $searching ]] || fail "with a search path of its own: $searching"

libraries=$folder/usr/lib/x86_64-linux-gnu
export LD_LIBRARY_PATH=$libraries
# passes PROGRAM [FILTER]: a test program of the tree, on the file that ORVGEN_TEST_LIBRARY names.
passes() {
    "$bin/$1" --gtest_brief=1 --gtest_filter="${2:-*}" >"$folder/log" 2>&1 || fail "$1 $(cat "$folder/log")"
    echo "$1 on ${ORVGEN_TEST_LIBRARY#"$folder"}: $(tail -n 1 "$folder/log")"
}
# The packaged file has neither a search path nor names of its local functions.
packaged='-Loading.SearchesItsOwnFolder:Symbols.TwinsAreLocalFunctions'
export ORVGEN_TEST_LIBRARY=$libraries/liborvgenm7.so.6.1
passes test_library "$packaged"
passes test_digests
passes test_kernel_shape
passes test_machine_counts

export ORVGEN_SECOND_BUILD=$libraries/glibc-hwcaps/x86-64-v3/liborvgenm7.so.6.1
passes test_second_build

export ORVGEN_TEST_LIBRARY=$ORVGEN_SECOND_BUILD ORVGEN_TEST_LEVEL=x86-64-v3
passes test_library "$packaged"
if /lib64/ld-linux-x86-64.so.2 --help | grep -q '^  x86-64-v3 (supported'; then
    passes test_digests
else
    echo "this processor is below x86-64-v3: the second build is not run"
fi

PYTHONPATH=$folder/usr/lib/python3/dist-packages "$tree/debian/tests/python"
echo "the packages are as they should be"
