# SPDX-License-Identifier: MIT
#: ./dev which [PROGRAM]              which of the library's two builds a program gets here, and by which levels
# Without a PROGRAM: the levels of this processor, and the builds that the loader's cache knows.
# shellcheck shell=bash
takes 1 "$@"
loader=/lib64/ld-linux-x86-64.so.2
library=liborvgenm7.so.6.1
[[ -x $loader ]] || fail "no loader of glibc here: $loader"

# file_under MASK...: what the loader gives the program, asked by its own list; nothing runs. (Its option --list gives up
# where a library is missing.)
file_under() {
    (cd "$caller" && LD_TRACE_LOADED_OBJECTS=1 "$loader" "$@" "$program" 2>/dev/null || true) |
        sed -n "s/^[[:space:]]*${library//./\\.} => \(.*\)/\1/p" | sed 's/ (0x[0-9a-f]*)$//'
}
build_of() {
    case $1 in
        */glibc-hwcaps/x86-64-v3/* | */lib-x86-64-v3/*) echo "the build for x86-64-v3" ;;
        *) echo "the build for every processor" ;;
    esac
}

# Before anything is said. (Where there is not even its folder, readlink fails.)
if [[ $# == 1 ]]; then
    program=$(cd "$caller" && readlink -f "$1") || true
    [[ -f $program ]] || misused "which: no program $1"
fi
echo "levels of this processor: $("$loader" --help | sed -n 's/^  \(x86-64-v[0-9]\) (supported.*/\1/p' | sort | xargs)"
if [[ $# == 0 ]]; then
    /sbin/ldconfig -p | grep -F "$library" || echo "the loader's cache does not know $library"
    exit
fi
found=$(file_under)
[[ -n $found ]] || fail "$1 does not load $library by itself (a static program, or one that loads it as it runs?)"
if [[ $found == "not found" ]]; then
    fail "$1 does not start here: the loader does not find $library (its rpath, LD_LIBRARY_PATH, ldconfig)"
fi
echo "$1 gets $(build_of "$found"): $found"
for level in x86-64-v4 x86-64-v3 x86-64-v2 none; do
    under=$(file_under --glibc-hwcaps-mask "$level")
    echo "with no level but $level: $(build_of "$under"), $under"
done
