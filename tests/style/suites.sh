#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# suites.sh TREE: no suite of tests has the name of one in another folder, so that a failure names its place.
set -euo pipefail
cd "$1"
suites=$(find tests examples -name '*.cpp' -exec sed -nE 's/^(TYPED_)?TEST(_F|_P)?\(([A-Za-z0-9_]+), .*/\3/p;T;F' {} + |
    awk '/\// { folder = $0; sub(/\/[^\/]*$/, "", folder); print suite, folder; next } { suite = $0 }' | sort -u)
[[ $(wc -l <<<"$suites") -gt 100 ]] || { echo "FAILED: suites are not found" && exit 1; }
twice=$(cut -d' ' -f1 <<<"$suites" | uniq -d)
[[ -z $twice ]] || { echo "FAILED: in two folders: $(grep -wF "$twice" <<<"$suites")" && exit 1; }
echo "all $(wc -l <<<"$suites") suites have names of their own"
