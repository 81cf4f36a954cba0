# SPDX-License-Identifier: MIT
#: ./dev package                      Debian packages and an archive of the installed tree, in build/<preset>/packages/
#: ./dev package --check              the same, with lintian, tests of the packaged files, and of a bare tree with them
#: ./dev package --twice              the same, and a second time elsewhere: the same bytes
# shellcheck shell=bash
takes 1 "$@"
[[ $# == 0 || $1 == --check || $1 == --twice ]] || misused "package: not expected: $1 (./dev help package)"
need build test examples package
packages=$root/$build/packages

# What the packages are made of: what git tracks, and without git all but what is built. Pictures that programs have left
# in the tree belong to nobody else.
tracked() { git -c safe.directory='*' ls-files "$@"; }
sources() {
    local file
    if [[ -e .git ]]; then
        tracked -z | while IFS= read -r -d '' file; do [[ ! -e $file && ! -L $file ]] || printf '%s\0' "$file"; done
    else
        find . -path ./build -prune -o ! -type d -print0
    fi
}

# debian_packages FOLDER: builds them of a copy of the tree there, with the kernels that the build has written. Objects of
# the time before are kept, nothing else.
debian_packages() {
    local tree=$1/orvgen
    mkdir -p "$tree"
    rm -f "$1"/*.*
    find "$tree" -mindepth 1 -maxdepth 1 ! -name 'obj-*' -exec rm -r {} +
    sources | tar --null --no-recursion --files-from=- -cf - | tar -xf - -C "$tree"
    (cd "$tree" && ORVGEN_KERNEL_DIR=$root/build/kernels DEB_BUILD_OPTIONS=parallel=$jobs \
        quietly "$root/$build/package.log" dpkg-buildpackage --build=binary --no-pre-clean --no-sign)
}

made all
rm -rf "$packages"
mkdir -p "$packages"
(cd "$build" && quietly package.log cpack -G TGZ)
mv "$build"/orvgen-*.tar.gz "$packages"
say "building the Debian packages"
stray=
[[ ! -e .git ]] || stray=$(tracked --others --exclude-standard | xargs)
[[ -z $stray ]] || say "without files that git does not track: $stray"
debian_packages "$root/build/package"
cp build/package/*.deb "$packages"
ls "$packages"/*
case ${1:-} in
    --check)
        say "testing the packages, as files and in a bare tree"
        quietly "$build/package-bare.log" tests/package/bare.sh "$packages" &
        bare=$! failed=()
        tests/package/debian.sh "$packages" "$build/bin" build/package/orvgen/obj-x86_64-linux-gnu || failed+=("the files")
        wait "$bare" || failed+=("the bare tree")
        sed -n '/@ summary$/,$ { /^[a-z]* *\(PASS\|FAIL\|SKIP\)\|^installed/p }' "$build/package-bare.log"
        [[ ${#failed[@]} == 0 ]] || fail "not as they should be: ${failed[*]/%/;}"
        ;;
    --twice)
        say "building the Debian packages once more, in another folder"
        elsewhere=$(mktemp -d)
        trap 'rm -rf "$elsewhere"' EXIT
        (umask 027 && export TZ=Asia/Tokyo LC_ALL=C && debian_packages "$elsewhere/once/more")
        for package in "$packages"/*.deb; do
            cmp "$package" "$elsewhere/once/more/$(basename "$package")" || fail "other bytes"
        done
        say "the same bytes"
        ;;
esac
