#: ./dev tidy                         clang-tidy over the tree
# shellcheck shell=bash
takes 0 "$@"
need build test examples bench check
quietly build/clang-configure.log cmake --preset clang -DORVGEN_BENCH=ON
say "clang-tidy"
git ls-files -- '*.c' '*.cpp' | grep -Fxf <(sed -n 's|.*"file": "'"$PWD"'/\(.*\)".*|\1|p' build/clang/compile_commands.json) |
    xargs -P "$jobs" -n 1 clang-tidy --quiet -p build/clang 2> >(grep -v 'warnings generated' >&2) ||
    fail "clang-tidy found something"
