# SPDX-License-Identifier: MIT
#: ./dev format [--check]             clang-format over the tree, or which files it would change
# shellcheck shell=bash
takes 1 "$@"
[[ $# == 0 || $1 == --check ]] || misused "format: not expected: $1 (./dev help format)"
need check
mapfile -t files < <(git ls-files -- '*.h' '*.hpp' '*.c' '*.cpp')
if [[ $# == 1 ]]; then
    bad=$(clang-format --dry-run "${files[@]}" 2>&1 | sed -n 's/^\([^:]*\):.*clang-format-violations.*/\1/p' | sort -u)
    [[ -z $bad ]] || fail "not formatted: ${bad//$'\n'/ } (./dev format)"
else
    clang-format -i "${files[@]}"
fi
