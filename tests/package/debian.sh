#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# debian.sh PACKAGES BIN OBJECTS: the Debian packages as files: what lintian says, what is in them, and the digests and the
# machine code of the libraries in them. BIN has the test programs, OBJECTS is the folder that the packages were built in.
set -euo pipefail
packages=$(realpath "$1") bin=$(realpath "$2") objects=$(realpath "$3")
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
level=glibc-hwcaps/x86-64-v3
name=liborvgenm7.so.6.1
# passes FILE PROGRAM [FILTER]: a test program of the tree, on that file of the library.
passes() {
    ORVGEN_TEST_LIBRARY=$1 LD_LIBRARY_PATH=$(dirname "$1"):$libraries \
        "$bin/$2" --gtest_brief=1 --gtest_filter="${3:-*}" >"$folder/log" 2>&1 || fail "$2 $(cat "$folder/log")"
    echo "$2 on ${1#"$folder"}: $(tail -n 1 "$folder/log")"
}
# The packaged file has neither a search path nor the names of its local functions.
packaged='-Loading.SearchesItsOwnFolder:Symbols.TwinsAreLocalFunctions'
passes "$libraries/$name" test_library "$packaged"
passes "$libraries/$name" test_digests
export ORVGEN_TEST_LEVEL=x86-64-v3
passes "$libraries/$level/$name" test_library "$packaged"
if /lib64/ld-linux-x86-64.so.2 --help | grep -q '^  x86-64-v3 (supported'; then
    passes "$libraries/$level/$name" test_digests
else
    echo "this processor is below x86-64-v3: the second build is not run"
fi
unset ORVGEN_TEST_LEVEL

# The other tests find functions by name, so that they read the files as they were linked: those that become the packaged
# ones where the names are taken away.
for file in lib/$name:$name lib-x86-64-v3/$name:$level/$name lib/liborvgenbatch.so.1:liborvgenbatch.so.1; do
    strip --strip-unneeded --remove-section=.comment --remove-section=.note -o "$folder/stripped" "$objects/${file%:*}"
    cmp "$folder/stripped" "$libraries/${file#*:}" || fail "not what was linked: ${file#*:}"
done
passes "$objects/lib/$name" test_kernel_shape
passes "$objects/lib/$name" test_machine_counts
export ORVGEN_SECOND_BUILD=$objects/lib-x86-64-v3/$name
passes "$objects/lib/$name" test_second_build

LD_LIBRARY_PATH=$libraries PYTHONPATH=$folder/usr/lib/python3/dist-packages "$tree/debian/tests/python"
echo "the packages are as they should be"
