#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# loader.sh CASE BUILD CMAKE CC LIBDIR: installs the package as CASE says, and reads back which of the two builds the loader
# maps into a program, under every mask of levels.
set -eu
name=$1 build=$2 cmake=$3 cc=$4 libdir=$5
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# Paths may hold spaces.
folder=$(mktemp -d -t "orvgen loader.XXXXXX")
trap 'rm -rf "$folder"' EXIT
prefix=$folder/usr
library=liborvgenm7.so.6.1
loader=/lib64/ld-linux-x86-64.so.2
unset LD_LIBRARY_PATH DESTDIR

fail() {
    echo "FAILED: $*"
    exit 1
}
quietly() { "$@" >"$folder/log" 2>&1 || fail "$* $(cat "$folder/log")"; }

install_package() {
    quietly "$cmake" --install "$build" --prefix "$prefix"
    quietly "$cmake" --install "$build" --prefix "$prefix" --component core
}
compile() {
    "$cc" -I"$prefix/include" "$here/consumer/which.c" -L"$prefix/$libdir" -lorvgenm7 -o "$folder/which" "$@"
}

# Which levels this processor has, as its loader says.
runs_v3=no
! "$loader" --help | grep -q '^  x86-64-v3 (supported' || runs_v3=yes
first=$prefix/$libdir/$library
second=$prefix/$libdir/glibc-hwcaps/x86-64-v3/$library

# maps EXPECTED COMMAND...: the program runs and has mapped that file, but for the second build the first one where the
# processor is below its level.
maps() {
    local expected=$1 found
    shift
    [[ $expected != "$second" || $runs_v3 == yes ]] || expected=$first
    found=$("$@") || fail "does not run: $*"
    [[ $(readlink -f "$found") == "$(readlink -f "$expected")" ]] || fail "$found, not $expected: $*"
    echo "$* -> $found"
}
# tells EXPECTED COMMAND...: ./dev which names that file and the build that it is of.
tells() {
    local expected=$1 said text="the build for every processor"
    shift
    [[ $expected != "$second" || $runs_v3 == yes ]] || expected=$first
    [[ $expected != "$second" ]] || text="the build for x86-64-v3"
    said=$("$@" "$here/../../dev" which "$folder/which") || fail "dev which: $said"
    grep -qFx "$folder/which gets $text: $expected" <<<"$said" || fail "dev which: $said"
    grep -qFx "with no level but none: the build for every processor, $first" <<<"$said" || fail "dev which: $said"
}
# Without a mask, and under each: a mask is the list of levels that may be searched.
maps_by_level() {
    maps "$second" "$@" "$folder/which"
    local mask
    for mask in x86-64-v2 x86-64-v4 x86-64-v4:x86-64-v2 none; do
        maps "$first" "$@" "$loader" --glibc-hwcaps-mask "$mask" "$folder/which"
    done
    for mask in x86-64-v3 x86-64-v3:x86-64-v2 x86-64-v4:x86-64-v3:x86-64-v2; do
        maps "$second" "$@" "$loader" --glibc-hwcaps-mask "$mask" "$folder/which"
    done
}

[[ $runs_v3 == yes ]] || echo "this processor is below x86-64-v3: the loader is seen to take the first build everywhere"
case $name in
    # A private prefix, which nothing but the program knows.
    rpath)
        install_package
        compile -Wl,-rpath,"$prefix/$libdir"
        maps_by_level env
        ;;
    library_path)
        install_package
        compile
        maps_by_level env LD_LIBRARY_PATH="$prefix/$libdir"
        tells "$second" env LD_LIBRARY_PATH="$prefix/$libdir"
        # Where the caller is.
        (cd "$prefix" && LD_LIBRARY_PATH=$libdir "$here/../../dev" which "$folder/which" >"$folder/log" 2>&1) || fail "$(cat "$folder/log")"
        ! "$here/../../dev" which "$folder/which" >"$folder/log" 2>&1 || fail "found in no folder"
        grep -q "^dev: .*the loader does not find $library" "$folder/log" || fail "$(cat "$folder/log")"
        # The folder itself, by which the build tree is tested: whatever the mask.
        [[ $runs_v3 == no ]] ||
            maps "$second" env LD_LIBRARY_PATH="$(dirname "$second")" "$loader" --glibc-hwcaps-mask none "$folder/which"
        ;;
    # A folder that the loader knows by its cache, with a cache of the test's own in the system's place.
    ldconfig)
        install_package
        compile
        echo "$prefix/$libdir" >"$folder/conf"
        quietly /sbin/ldconfig -X -f "$folder/conf" -C "$folder/cache"
        /sbin/ldconfig -p -C "$folder/cache" >"$folder/cached"
        grep -qE "$library \(libc6,x86-64, hwcaps?: \"x86-64-v3\"\) => $second\$" "$folder/cached" || fail "$(grep orvgen "$folder/cached")"
        grep -qE "$library \(libc6,x86-64\) => $first\$" "$folder/cached" || fail "$(grep orvgen "$folder/cached")"
        alone=(unshare --mount)
        [[ $(id -u) == 0 ]] || alone=(unshare --map-root-user --mount)
        if "${alone[@]}" mount --bind "$folder/cache" /etc/ld.so.cache 2>"$folder/log"; then
            # shellcheck disable=SC2016
            maps_by_level "${alone[@]}" sh -c 'mount --bind "$0" /etc/ld.so.cache && exec "$@"' "$folder/cache"
        else
            echo "the cache was read, not run with: $(cat "$folder/log")"
        fi
        ;;
    # What a maker of packages does: files below DESTDIR, then moved.
    staged)
        for component in "" "--component core"; do
            # shellcheck disable=SC2086
            DESTDIR=$folder/stage quietly "$cmake" --install "$build" --prefix /opt/orvgen $component
        done
        mv "$folder/stage/opt/orvgen" "$prefix"
        [[ $(cd "$prefix/$libdir/glibc-hwcaps" && find . ! -type d) == "./x86-64-v3/$library" ]] ||
            fail "$(find "$prefix/$libdir/glibc-hwcaps")"
        readelf -dW "$second" | grep -qF 'Library runpath: [$ORIGIN:$ORIGIN/../..]' || fail "the search path"
        compile -Wl,-rpath,"$prefix/$libdir"
        maps_by_level env
        ;;
    # A path names a file, and no level is looked for.
    by_path)
        install_package
        compile -Wl,-rpath,"$prefix/$libdir"
        maps "$first" "$folder/which" "$first"
        [[ $runs_v3 == no ]] || maps "$second" "$folder/which" "$second"
        "$cc" -I"$prefix/include" "$here/consumer/use.c" -o "$folder/static" "$prefix/$libdir/liborvgenm7.a" -lm
        ! objdump -d "$folder/static" | grep -q 'ymm\|vaddps' || fail "the archive is not the first build"
        ;;
    # Where the second build is gone, or the package was made without it, the first one runs.
    without)
        install_package
        compile -Wl,-rpath,"$prefix/$libdir"
        rm -r "$prefix/$libdir/glibc-hwcaps"
        maps "$first" "$folder/which"
        tells "$first" env
        ;;
    *) fail "unknown case $name" ;;
esac
echo "package: $name is as it should be"
