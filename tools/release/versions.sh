#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# versions.sh TREE: the release number of the header stands wherever else one stands: in the header's own parts, at the head
# of the changelog, in the pages of the documentation, in the packages' changelog.
set -euo pipefail
cd "$1"
bad=0
differs() {
    echo "versions: $*"
    bad=1
}
part() { sed -n "s/^#define ORVGEN_VERSION_$1 \"\?\([0-9.]*\)\"\?\$/\1/p" include/orvgen.h; }
release=$(part TEXT)
[[ $release =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || differs "include/orvgen.h has no release: $release"
[[ $(part MAJOR).$(part MINOR).$(part PATCH) == "$release" ]] || differs "the parts in include/orvgen.h are not $release"
head=$(sed -n 's/^## \([0-9.]*\).*/\1/p' CHANGELOG.md | sed -n 1p)
[[ $head == "$release" ]] || differs "CHANGELOG.md begins with $head, not $release"
for page in README.md docs/releases.md; do
    grep -qF "$release" "$page" || differs "$page does not name $release"
done
if [[ -f debian/changelog ]]; then
    packaged=$(sed -n '1s/^[^(]*(\([0-9.]*\).*/\1/p' debian/changelog)
    [[ $packaged == "$release" ]] || differs "debian/changelog begins with $packaged, not $release"
fi
[[ $bad == 0 ]] && echo "$release everywhere"
exit $bad
