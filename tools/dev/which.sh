# SPDX-License-Identifier: MIT
#: ./dev which [PROGRAM]              which of the library's two builds a program gets here, and by which levels
# Without a PROGRAM: the levels of this processor, and the builds that the loader's cache knows.
# shellcheck shell=bash
takes 1 "$@"
loader=/lib64/ld-linux-x86-64.so.2
library=liborvgenm7.so.6.1
[[ -x $loader ]] || fail "no loader of glibc here: $loader"

# file_under MASK...: what the loader gives the program, asked by its own list; nothing runs.
file_under() { "$loader" "$@" --list "$program" 2>/dev/null | awk -v name="$library" '$1 == name { print $3; exit }'; }
build_of() {
    case $1 in
        */glibc-hwcaps/x86-64-v3/* | */lib-x86-64-v3/*) echo "the build for x86-64-v3" ;;
        not) echo "not found" ;;
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
echo "$1 gets $(build_of "$found"): $found"
for level in x86-64-v4 x86-64-v3 x86-64-v2 none; do
    under=$(file_under --glibc-hwcaps-mask "$level")
    echo "with no level but $level: $(build_of "$under"), $under"
done
