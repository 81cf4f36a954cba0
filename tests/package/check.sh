#!/usr/bin/env bash
# check.sh CASE SOURCE BUILD CMAKE CC CXX LIBDIR: installs the package into a folder of its own and uses it as CASE says.
set -eu
name=$1 source=$2 build=$3 cmake=$4 cc=$5 cxx=$6 libdir=$7
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
prefix=$folder/usr
core=liborvcorexwide.so.6.1
unset LD_LIBRARY_PATH DESTDIR

fail() {
    echo "FAILED: $*"
    exit 1
}

install_package() {
    "$cmake" --install "$build" --prefix "$prefix" "$@" >"$folder/install.log" || fail "$(cat "$folder/install.log")"
}

# By CMake, from the installed package (find) or from the source tree (subdirectory), in one language; further arguments
# go to cmake.
configure_consumer() {
    "$cmake" -S "$here/consumer" -B "$folder/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCONSUMER_BY="$1" \
        -DCONSUMER_LANGUAGE="$2" -DORVGEN_SOURCE="$source" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
        "${@:3}" >"$folder/log" 2>&1 || fail "$(cat "$folder/log")"
}
consume() {
    configure_consumer "$@"
    "$cmake" --build "$folder/build" >>"$folder/log" 2>&1 || fail "$(cat "$folder/log")"
    "$folder/build/consumer"
}

# By pkg-config: with nothing known but the folder of orvgen.pc.
pkg_config() {
    local compiler=$1 program=$2 flags
    flags=$(PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig pkg-config --cflags --libs orvgen)
    # shellcheck disable=SC2086
    "$compiler" "$here/consumer/$program" $flags -Wl,-rpath,"$prefix/$libdir" -o "$folder/consumer"
    [[ $(PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig pkg-config --modversion orvgen) == 6.1 ]] || fail "version"
    "$folder/consumer"
}

case $name in
    find_package_c) install_package; consume find C ;;
    find_package_cpp) install_package; consume find CXX ;;
    pkg_config_c) install_package; pkg_config "$cc" use.c ;;
    pkg_config_cpp) install_package; pkg_config "$cxx" use.cpp ;;
    add_subdirectory)
        # Configured, and the build planned; building the library once more would show nothing new.
        configure_consumer subdirectory CXX -DCMAKE_INSTALL_LIBDIR=/opt/apart
        grep -qx 'libdir=/opt/apart' "$folder/build/orvgen/orvgen.pc" || fail "an absolute folder in orvgen.pc"
        ninja -C "$folder/build" -n -v consumer >"$folder/plan" || fail "$(cat "$folder/plan")"
        grep -q "liborvgenm7.so" "$folder/plan" || fail "the consumer does not link the library"
        ;;
    staged)
        # What a maker of packages does: the prefix is the target's, the files go below DESTDIR. The tree can be moved.
        DESTDIR=$folder/stage "$cmake" --install "$build" --prefix /opt/orvgen >/dev/null
        mv "$folder/stage/opt/orvgen" "$prefix"
        for file in "include/orvgen.h" "$libdir/liborvgenm7.so" "$libdir/liborvgenm7.so.6.1" "$libdir/$core" \
            "$libdir/pkgconfig/orvgen.pc" "$libdir/cmake/orvgen/orvgenConfig.cmake"; do
            [[ -e $prefix/$file ]] || fail "not installed: $file"
        done
        readelf -dW "$prefix/$libdir/liborvgenm7.so.6.1" | grep -qF 'Library runpath: [$ORIGIN]' || fail "the search path"
        ! grep -rq "$build\|$source" "$prefix/$libdir/cmake" "$prefix/$libdir/pkgconfig" || fail "paths of the build tree"
        pkg_config "$cc" use.c
        ;;
    core_kept)
        # A core library that is there already stays as it is, also when it is a link.
        mkdir -p "$prefix/$libdir"
        echo "the real one" >"$prefix/$libdir/real"
        ln -s real "$prefix/$libdir/$core"
        install_package
        [[ -L $prefix/$libdir/$core && $(cat "$prefix/$libdir/$core") == "the real one" ]] || fail "overwritten"
        rm "$prefix/$libdir/$core"
        ln -s absent "$prefix/$libdir/$core"
        install_package
        [[ $(readlink "$prefix/$libdir/$core") == absent ]] || fail "a dangling link was overwritten"
        ;;
    core_apart)
        install_package --component library
        install_package --component development
        [[ ! -e $prefix/$libdir/$core ]] || fail "the stand-in came with another component"
        [[ -e $prefix/include/orvgen.h ]] || fail "no header"
        install_package --component core
        [[ -e $prefix/$libdir/$core ]] || fail "the stand-in is missing"
        ;;
    *) fail "unknown case $name" ;;
esac
echo "package: $name is as it should be"
