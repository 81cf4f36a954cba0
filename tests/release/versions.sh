#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# versions.sh TREE: the release number is one everywhere, and another one anywhere is noticed.
set -euo pipefail
tree=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
    echo "FAILED: $*"
    exit 1
}
"$tree/tools/release/versions.sh" "$tree" || fail "the tree itself"
files=(include/orvgen.h CHANGELOG.md README.md docs/releases.md)
[[ ! -f $tree/debian/changelog ]] || files+=(debian/changelog)
release=$(sed -n 's/^#define ORVGEN_VERSION_TEXT "\(.*\)"$/\1/p' "$tree/include/orvgen.h")
for changed in "${files[@]}"; do
    for file in "${files[@]}"; do install -D "$tree/$file" "$folder/$file"; done
    sed -i "s/${release//./\\.}/97.98.99/g" "$folder/$changed"
    ! "$tree/tools/release/versions.sh" "$folder" >"$folder/said" || fail "another number in $changed is not noticed"
    grep -q "$changed\|97\.98\.99" "$folder/said" || fail "$changed: $(cat "$folder/said")"
done
echo "${#files[@]} files"
