# SPDX-License-Identifier: MIT
#: ./dev package                      Debian packages and an archive of the installed tree, in build/<preset>/packages/
#: ./dev package --check              the same, a second time elsewhere, byte for byte; lintian; tests of the packaged files
# shellcheck shell=bash
takes 1 "$@"
[[ $# == 0 || $1 == --check ]] || misused "package: not expected: $1 (./dev help package)"
need build test examples package
packages=$root/$build/packages

# debian_packages FOLDER: builds them of a copy of the tree there, with the kernels that the build has written.
debian_packages() {
    local tree=$1/orvgen
    rm -rf "$1"
    mkdir -p "$tree"
    tar --exclude=./build --exclude=./.git -cf - . | tar -xf - -C "$tree"
    (cd "$tree" && ORVGEN_KERNEL_DIR=$root/build/kernels DEB_BUILD_OPTIONS=parallel=$jobs \
        quietly "$root/$build/package.log" dpkg-buildpackage --build=binary --no-sign)
}

made all
rm -rf "$packages"
mkdir -p "$packages"
(cd "$build" && quietly package.log cpack -G TGZ)
mv "$build"/orvgen-*.tar.gz "$packages"
say "building the packages"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
debian_packages "$work/first"
cp "$work"/first/*.deb "$packages"
ls "$packages"/*
[[ $# == 1 ]] || exit 0

make_targets test_digests test_second_build
tests/package/debian.sh "$packages" "$build/bin"
say "building the packages once more, in another folder"
debian_packages "$work/a/second/time"
for package in "$packages"/*.deb; do
    cmp "$package" "$work/a/second/time/$(basename "$package")" || fail "other bytes"
done
say "the same bytes"
