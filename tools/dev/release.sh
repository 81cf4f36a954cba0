# SPDX-License-Identifier: MIT
#: ./dev release --check              whether this tree can be released: versions, names, interface, results, package
# Every point is looked at, also where one before it fails. docs/releases.md tells what else belongs to a release.
# shellcheck shell=bash
[[ $# == 1 && $1 == --check ]] || misused "release: only --check (./dev help release)"
need build test

failed=()
# point NAME COMMAND...: one line, and the command's own where it fails.
point() {
    local name=$1 said
    shift
    if said=$("$@" 2>&1); then
        say "ok: $name"
    else
        say "FAILED: $name"
        [[ -z $said ]] || tail -n 20 <<<"$said"
        failed+=("$name")
    fi
}
clean() { [[ -z $(git status --porcelain) ]] || { git status --short && return 1; }; }
exported() { diff tests/frame/exports.txt "$build/exports.txt" && [[ $(wc -l <tests/frame/exports.txt) == 1193 ]]; }
packaged() {
    local archive names file
    ./dev package && archive=$(ls "$build/packages/orvgen-$release"-*.tar.gz) && names=$(tar -tzf "$archive") || return 1
    for file in liborvgenm7.so.6.1 liborvgenbatch.so.1 liborvgenm7.a include/orvgen.h include/orvgen.hpp orvgen.pc \
        man7/orvgen.7 orvgen.cdx.json LICENSE; do
        grep -q "/$file\$" <<<"$names" || { echo "$archive lacks $file" && return 1; }
    done
    for file in liborvgenm7-6.1 liborvgenbatch1 liborvgen-dev python3-orvgen orvgen-doc liborvcorexwide-standin; do
        ls "$build/packages/${file}_${release}"_*.deb >/dev/null || return 1
    done
}
build_all() { cmake --preset "$preset" && cmake --build --preset "$preset" -j "$jobs"; }
tested() { ctest --preset "$preset" -R "$1"; }

release=$(sed -n 's/^#define ORVGEN_VERSION_TEXT "\(.*\)"$/\1/p' include/orvgen.h)
point "one version number" tools/release/versions.sh "$root"
point "a clean tree" clean
point "a build of everything" build_all
point "the 1193 exported names" exported
point "the binary interface" tests/abi/compare.sh "$root" gcc
point "the licence in every file" tests/style/licences.sh "$root"
point "the results' digests" tested '^test_digests'
point "the shape of the libraries" tested '^test_(library|batch_library)'
point "the manual pages, the bill of materials" tested '^(manual_|bill_)'
point "the packages" packaged
[[ ${#failed[@]} == 0 ]] || fail "not ready: ${failed[*]/%/;}"
say "orvgen $release is ready; then .ci/run on a bare system, and the tag v$release"
