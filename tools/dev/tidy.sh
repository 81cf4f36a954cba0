# SPDX-License-Identifier: MIT
#: ./dev tidy [FOLDER...]             clang-tidy over the tree, or these folders of it
# shellcheck shell=bash
for folder in "$@"; do
    [[ -d $folder ]] || misused "tidy: no folder $folder"
done
need build test examples bench check
quietly build/clang-configure.log cmake --preset clang -DORVGEN_BENCH=ON
say "clang-tidy"
git ls-files -- "${@:-.}" | grep -E '\.(c|cpp)$' | grep -Fxf <(sed -n 's|.*"file": "'"$PWD"'/\(.*\)".*|\1|p' build/clang/compile_commands.json) |
    xargs -P "$jobs" -n 1 clang-tidy --quiet -p build/clang 2> >(grep -v 'warnings generated' >&2) ||
    fail "clang-tidy found something"
