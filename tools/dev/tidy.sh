# SPDX-License-Identifier: MIT
#: ./dev tidy [--warnings] [FOLDER...]   clang-tidy over the tree, or these folders of it; or only clang's warnings
# shellcheck shell=bash
checks=()
if [[ ${1:-} == --warnings ]]; then
    checks=(--checks='-*,clang-diagnostic-*,misc-unused-*')
    shift
fi
for folder in "$@"; do
    [[ -d $folder ]] || misused "tidy: no folder $folder"
done
need build test examples bench check python
quietly build/clang-configure.log cmake --preset clang -DORVGEN_BENCH=ON -DORVGEN_PYTHON=ON \
    -DPython_EXECUTABLE=/usr/bin/python3
# The one source that is written while building.
quietly build/clang-digest.log ninja -C build/clang src/kernelgen/compiler_digest.h
say "clang-tidy"
git ls-files -- "${@:-.}" | grep -E '\.(c|cpp)$' | grep -Fxf <(sed -n 's|.*"file": "'"$PWD"'/\(.*\)".*|\1|p' build/clang/compile_commands.json) |
    xargs -P "$jobs" -n 1 clang-tidy --quiet "${checks[@]}" -p build/clang 2> >(grep -v 'warnings generated' >&2) ||
    fail "clang-tidy found something"
