#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh CASE SOURCE BUILD CMAKE CC CXX LIBDIR: installs the package into a folder of its own, or takes the project into
# another one, and looks at it as CASE says.
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

# Runs a command; shows what it said where it fails.
quietly() { "$@" >"$folder/log" 2>&1 || fail "$* $(cat "$folder/log")"; }

install_package() { quietly "$cmake" --install "$build" --prefix "$prefix" "$@"; }
install_with_core() {
    install_package
    install_package --component core
}

# A project of this folder's, with further arguments for cmake.
configure() { quietly "$cmake" -S "$here/$1" -B "$folder/$2" -G Ninja -DORVGEN_SOURCE="$source" \
    -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" "${@:3}"; }

# By CMake, from the installed package (find) or from the source tree (subdirectory, fetch), in one language.
configure_consumer() {
    configure consumer build -DCMAKE_PREFIX_PATH="$prefix" -DCONSUMER_BY="$1" -DCONSUMER_LANGUAGE="$2" "${@:3}"
}
consume() {
    configure_consumer "$@"
    quietly "$cmake" --build "$folder/build"
    "$folder/build/consumer"
}
consume_static() { consume find "$1" -DCONSUMER_LIBRARY=orvgen::static -DCONSUMER_SOURCE="$2"; }

# By pkg-config: with nothing known but the folder of orvgen.pc.
pkg_config() { PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig command pkg-config "$@" "$module"; }
module=orvgen
compile_by_pkg_config() {
    # shellcheck disable=SC2046
    "$1" "${@:3}" "$here/consumer/$2" $(pkg_config --cflags --libs) -Wl,-rpath,"$prefix/$libdir" -o "$folder/consumer"
    "$folder/consumer"
}

# The build of the consumer planned, not made: making the library once more would show nothing new.
plan_consumer() {
    ninja -C "$folder/build" -t commands consumer >"$folder/plan" || fail "$(cat "$folder/plan")"
    grep -q "liborvgenm7.so" "$folder/plan" || fail "the consumer does not link the library"
}

case $name in
    find_package_c) install_with_core; consume find C ;;
    find_package_cpp) install_with_core; consume find CXX -DCONSUMER_SOURCE=use.cpp ;;
    pkg_config_c) install_with_core; compile_by_pkg_config "$cc" use.c ;;
    pkg_config_cpp) install_with_core; compile_by_pkg_config "$cxx" use.cpp ;;

    # The archive needs no core library.
    static_c) install_package; consume_static C use.c ;;
    static_cpp) install_package; consume_static CXX use.cpp ;;
    static_own_names) install_package; consume_static C own_names.c ;;
    static_own_allocator) install_package; consume_static C own_allocator.c ;;
    static_pkg_config)
        install_package
        # shellcheck disable=SC2046
        "$cc" -static "$here/consumer/use.c" $(pkg_config --static --cflags --libs) -o "$folder/consumer"
        ! readelf -dW "$folder/consumer" | grep -q NEEDED || fail "not static"
        "$folder/consumer"
        ;;
    static_only_what_is_called)
        install_package
        consume_static C one_kernel.c
        found=$(nm "$folder/build/consumer" | sed -n 's/.* \(o[rw]\(vg\|ng\|vM\|vF\).*\)/\1/p' | sort | tr '\n' ' ')
        [[ $found == "orvgDFTFwd_CToC_12_32fc owngDFTFwd_CToC_12_32fc_unaligned " ]] || fail "linked: $found"
        ;;

    typed) install_with_core; consume find CXX -DCONSUMER_LIBRARY=orvgen::batch -DCONSUMER_SOURCE=use_typed.cpp ;;
    typed_pkg_config)
        install_with_core
        module=orvgen-batch
        compile_by_pkg_config "$cxx" use_typed.cpp -std=c++20
        ;;
    batch_c) install_with_core; consume find C -DCONSUMER_LIBRARY=orvgen::batch -DCONSUMER_SOURCE=use_batch.c ;;
    batch_cpp) install_with_core; consume find CXX -DCONSUMER_LIBRARY=orvgen::batch -DCONSUMER_SOURCE=use_batch.cpp ;;
    batch_pkg_config)
        install_with_core
        module=orvgen-batch
        compile_by_pkg_config "$cc" use_batch.c
        ;;
    batch_static_c) install_package; consume find C -DCONSUMER_LIBRARY=orvgen::batch_static -DCONSUMER_SOURCE=use_batch.c ;;
    batch_static_cpp) install_package; consume find CXX -DCONSUMER_LIBRARY=orvgen::batch_static -DCONSUMER_SOURCE=use_batch.cpp ;;
    batch_static_pkg_config)
        install_package
        module=orvgen-batch
        # shellcheck disable=SC2046
        "$cc" -static "$here/consumer/use_batch.c" $(pkg_config --static --cflags --libs) -o "$folder/consumer"
        ! readelf -dW "$folder/consumer" | grep -q NEEDED || fail "not static"
        "$folder/consumer"
        ;;

    subdirectory | fetch_content)
        if [[ $name == subdirectory ]]; then by=subdirectory; else by=fetch; fi
        configure_consumer $by CXX -DCONSUMER_SOURCE=use.cpp
        plan_consumer
        ! grep -q -- -Werror "$folder/build/build.ninja" || fail "warnings are errors"
        ! find "$folder/build" -name cmake_install.cmake -exec grep -H 'file(INSTALL' {} + || fail "install rules"
        configure_consumer $by CXX -DCONSUMER_SOURCE=use.cpp -DORVGEN_INSTALL=ON -DCMAKE_INSTALL_LIBDIR=/opt/apart
        grep -qx 'libdir=/opt/apart' "$(find "$folder/build" -name orvgen.pc)" || fail "an absolute folder in orvgen.pc"
        ;;
    parent_unchanged)
        for with in ON OFF; do
            configure parent with-$with -DWITH_ORVGEN=$with
            grep SETTING "$folder/log" | sed "s|with-$with||g" | sort >"$folder/settings-$with"
            sed -n '/parent\.c/,$p' "$folder/with-$with/compile_commands.json" | grep '"command".*parent\.c' |
                sed "s|with-$with||g" | sort >"$folder/commands-$with"
            grep -E '^CMAKE_BUILD_TYPE|^BUILD_' "$folder/with-$with/CMakeCache.txt" | sort >"$folder/cache-$with" || true
            (cd "$folder/with-$with" && ctest -N) | grep 'Total Tests' >"$folder/tests-$with"
            grep 'file(INSTALL' "$folder/with-$with/cmake_install.cmake" | sed "s|with-$with||g" >"$folder/installed-$with"
        done
        [[ $(wc -l <"$folder/commands-ON") == 2 && $(wc -l <"$folder/settings-ON") -gt 20 ]] || fail "nothing compared"
        for what in settings commands cache tests installed; do
            diff "$folder/$what-OFF" "$folder/$what-ON" || fail "the parent's $what"
        done
        # Even if the parent demands what the library could not bear.
        configure parent strict -DWITH_ORVGEN=ON -DCMAKE_COMPILE_WARNING_AS_ERROR=ON -DCMAKE_UNITY_BUILD=ON \
            -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON -DCMAKE_CXX_FLAGS=-ffast-math
        grep -E 'orvgen_dct4.*family32f\.cpp' "$folder/strict/compile_commands.json" >"$folder/strict.txt"
        grep -q -- '-ffast-math .*-fno-fast-math' "$folder/strict.txt" || fail "fast-math stays"
        ! grep -qE -- '-Werror|-flto' "$folder/strict.txt" || fail "$(cat "$folder/strict.txt")"
        ;;
    refused_systems)
        for system in "Linux aarch64" "Linux i686" "FreeBSD x86_64"; do
            read -r os processor <<<"$system"
            ! "$cmake" -S "$source" -B "$folder/$os-$processor" -G Ninja -DCMAKE_SYSTEM_NAME="$os" \
                -DCMAKE_SYSTEM_PROCESSOR="$processor" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
                >"$folder/log" 2>&1 || fail "$system is accepted"
            [[ $(grep -c "^  orvgen is written for 64-bit x86-64 Linux, not for $processor $os\.$" "$folder/log") == 1 &&
                $(grep -c '^CMake Error' "$folder/log") == 1 ]] || fail "$system: $(cat "$folder/log")"
        done
        ;;
    plain_build)
        # As the README says, without a preset.
        quietly "$cmake" -S "$source" -B "$folder/build" -G Ninja -DORVGEN_TESTS=OFF -DORVGEN_EXAMPLES=OFF \
            -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx"
        grep -qx 'CMAKE_BUILD_TYPE:STRING=Release' "$folder/build/CMakeCache.txt" || fail "not optimised"
        ! grep -q -- -Werror "$folder/build/build.ninja" || fail "warnings are errors"
        ;;
    batch_targets)
        # The batch library with some of its targets: what would be compiled for it, in names that only one target has.
        plan_batch() {
            quietly "$cmake" -S "$source" -B "$folder/build" -G Ninja -DORVGEN_TESTS=OFF -DORVGEN_EXAMPLES=OFF \
                -DORVGEN_WIDE_TARGETS="$1" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx"
            ninja -C "$folder/build" -t commands orvgen_batch orvgen_batch_static >"$folder/plan" || fail "$(cat "$folder/plan")"
            found=
            for target in avx2 avx512; do
                ! grep -q "/$target\.cpp" "$folder/plan" || found+="$target "
                ! grep -qE "owng\w+_$target\b" "$folder/plan" || found+="kernels-$target "
            done
            [[ $found == "$2" ]] || fail "targets $1: $found"
        }
        plan_batch "AVX2;AVX512" "avx2 kernels-avx2 avx512 kernels-avx512 "
        plan_batch AVX2 "avx2 kernels-avx2 "
        plan_batch AVX512 "avx512 kernels-avx512 "
        plan_batch "" ""
        ! "$cmake" -S "$source" -B "$folder/build" -DORVGEN_WIDE_TARGETS=avx2 >"$folder/log" 2>&1 || fail "avx2 is accepted"
        grep -q "ORVGEN_WIDE_TARGETS: avx2 is neither" "$folder/log" || fail "$(cat "$folder/log")"
        ;;

    release)
        # One release everywhere: header, CMake, pkg-config, changelog.
        install_package
        release=$(sed -n 's/^#define ORVGEN_VERSION_TEXT "\(.*\)"$/\1/p' "$prefix/include/orvgen.h")
        [[ $release =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || fail "the header's release: $release"
        [[ $(pkg_config --modversion) == "$release" ]] || fail "pkg-config"
        grep -qF "set(PACKAGE_VERSION \"$release\")" "$prefix/$libdir/cmake/orvgen/orvgenConfigVersion.cmake" || fail "CMake"
        [[ $(sed -n 's/^## \([0-9.]*\).*/\1/p' "$source/CHANGELOG.md" | head -n 1) == "$release" ]] || fail "the changelog"
        ;;
    staged)
        # What a maker of packages does: the prefix is the target's, the files go below DESTDIR. The tree can be moved.
        for component in "" "--component core"; do
            # shellcheck disable=SC2086
            DESTDIR=$folder/stage quietly "$cmake" --install "$build" --prefix /opt/orvgen $component
        done
        mv "$folder/stage/opt/orvgen" "$prefix"
        for file in "include/orvgen.h" "include/orvgen_batch.h" "include/orvgen.hpp" "include/orvgen_batch.hpp" \
            "include/orvgen/values.hpp" "share/man/man7/orvgen.7" "share/man/man3/orvgHartley_9_64f.3" "$libdir/liborvgenbatch.so" "$libdir/liborvgenbatch.so.1" \
            "$libdir/liborvgenbatch.a" \
            "$libdir/pkgconfig/orvgen-batch.pc" "$libdir/liborvgenm7.so" "$libdir/liborvgenm7.so.6.1" "$libdir/liborvgenm7.a" \
            "$libdir/$core" "$libdir/pkgconfig/orvgen.pc" "$libdir/cmake/orvgen/orvgenConfig.cmake" \
            "share/doc/orvgen/LICENSE"; do
            [[ -e $prefix/$file ]] || fail "not installed: $file"
        done
        cmp "$source/LICENSE" "$prefix/share/doc/orvgen/LICENSE" || fail "another licence"
        readelf -dW "$prefix/$libdir/liborvgenm7.so.6.1" | grep -qF 'Library runpath: [$ORIGIN]' || fail "the search path"
        ! grep -rq "$build\|$source" "$prefix/$libdir/cmake" "$prefix/$libdir/pkgconfig" || fail "paths of the build tree"
        compile_by_pkg_config "$cc" use.c
        ;;
    core_kept)
        # A core library that is there already stays as it is, also when it is a link.
        mkdir -p "$prefix/$libdir"
        echo "the real one" >"$prefix/$libdir/real"
        ln -s real "$prefix/$libdir/$core"
        install_with_core
        [[ -L $prefix/$libdir/$core && $(cat "$prefix/$libdir/$core") == "the real one" ]] || fail "overwritten"
        rm "$prefix/$libdir/$core"
        ln -s absent "$prefix/$libdir/$core"
        install_with_core
        [[ $(readlink "$prefix/$libdir/$core") == absent ]] || fail "a dangling link was overwritten"
        ;;
    core_apart)
        # The stand-in comes only where it is asked for by name.
        install_package
        [[ -e $prefix/$libdir/liborvgenm7.so.6.1 && -e $prefix/include/orvgen.h ]] || fail "no library"
        [[ ! -e $prefix/$libdir/$core ]] || fail "the stand-in came unasked"
        install_package --component core
        [[ -e $prefix/$libdir/$core ]] || fail "the stand-in is missing"
        ;;
    *) fail "unknown case $name" ;;
esac
echo "package: $name is as it should be"
