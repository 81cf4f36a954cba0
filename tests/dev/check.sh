#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh TREE: what ./dev makes of its arguments, in a copy of it beside which stand-ins for the builders, ctest and
# the built programs only tell how they were called.
set -u
unset GTEST_FILTER
tree=$1
# Paths may hold spaces.
copy=$(mktemp -d -t "a dev.XXXXXX")
trap 'rm -rf "$copy"' EXIT
mkdir -p "$copy/tree/build/release/bin" "$copy/bin" "$copy/elsewhere"
cp -r "$tree/dev" "$tree/tools" "$tree/CMakePresets.json" "$copy/tree/"
ln -s "$copy/tree/dev" "$copy/elsewhere/dev"

stand_in() {
    cat >"$1"
    chmod +x "$1"
}
stand_in "$copy/bin/dpkg-query" <<<'echo "ii "'
stand_in "$copy/bin/ninja" <<<'printf "%s: what\n" bin/test_wht lib/other.so'
stand_in "$copy/bin/cmake" <<<"echo \"cmake \$*\" >>'$copy/log'; exit \${CMAKE_FAILS:-0}"
stand_in "$copy/bin/ctest" <<EOF
#!/usr/bin/env bash
echo "ctest \$* GTEST_FILTER=\${GTEST_FILTER:-}" >>'$copy/log'
tests=(test_wht test_wht_bits.0 test_wht_bits.1 header_c99)
case "\$*" in
    *--print-labels*) printf 'All Labels:\n  wht\n' ;;
    *-N*)
        number=0
        [[ "\$*" != *-V* ]] || echo "1: Test command: \${PWD// /\\\\ }/build/release/bin/test_wht \"a b\" \"/lib/other.so\""
        for name in "\${tests[@]}"; do
            number=\$((number + 1))
            [[ "\$*" == *-R* && ! \$name =~ \$(sed 's/.*-R \([^ ]*\).*/\1/' <<<"\$*") ]] || echo "  Test #\$number: \$name"
        done ;;
    *)
        echo '<testsuite><testcase name="header_c99" status="run"/></testsuite>' >build/release/test-results.junit
        exit \${CTEST_FAILS:-0} ;;
esac
EOF
for program in spectrogram bench bench_dct4 kernelgen python; do
    stand_in "$copy/tree/build/release/bin/$program" <<<"echo \"$program \$* in \$PWD\" >>'$copy/log'"
done
export PATH="$copy/bin:$PATH"

failures=0
problem() {
    echo "FAILED: $*: $(cat "$copy/out" "$copy/err" "$copy/log" 2>/dev/null)"
    failures=$((failures + 1))
}
# gives STATUS ARGUMENTS...: ./dev called from elsewhere through a link.
gives() {
    local expected=$1 status
    shift
    : >"$copy/log"
    (cd "$copy/elsewhere" && ./dev "$@") >"$copy/out" 2>"$copy/err"
    status=$?
    [[ $status == "$expected" ]] || problem "$*: status $status"
    [[ $expected == 0 ]] || grep -q '^dev: ' "$copy/err" || problem "$*: no message of dev"
}
logs() { grep -qFx -- "$1" "$copy/log" || problem "not called: $1"; }
logs_not() { grep -q -- "$1" "$copy/log" && problem "called: $1"; }
errs() { grep -q -e "$1" "$copy/err" || problem "not said: $1"; }

# Wrong calls.
for arguments in nonsense lib ../dev "setup" "setup nonsense" "setup build nonsense" "audit x" "package x" "tidy x" \
    "accuracy x" "digests x" "figures x" "faults nonsense" "faults list x" "format x" "format --check x" "help nonsense" "help test x" \
    "test list x" "which a b" "which nothing" "which no/such/folder" \
    "fuzz x" "fuzz wht 0" "fuzz wht 1 2" "abi x" "release" "release x" "test a b c" "test nothing" "test -R nothing" "test -L" "test wht -R" "show" \
    "show --all-plans x"; do
    read -ra words <<<"$arguments"
    gives 2 "${words[@]}"
    logs_not "--build"
done
gives 2 test ""
logs_not "-j"
gives 2 test -R nothing
errs "no test for: -R nothing"
ORVGEN_PRESET=nonsense gives 2 run
errs "no preset nonsense"

# Every command has its line of help.
gives 0 help
for file in "$tree"/tools/dev/*.sh; do
    name=$(basename "$file" .sh)
    [[ $name == lib ]] || grep -q "^\./dev $name" "$copy/out" || problem "help lacks $name"
done
gives 0 help test
grep -q "filter of GoogleTest" "$copy/out" || problem "help test"

# Any command tells its own, and those of programs what these take besides.
for file in "$tree"/tools/dev/*.sh; do
    name=$(basename "$file" .sh)
    [[ $name != lib ]] || continue
    gives 0 "$name" --help
    [[ $(head -n 1 "$copy/out") == "./dev $name"* ]] || problem "$name --help"
    [[ $name == run || $name == bench ]] || logs_not "."
done
gives 0 bench --help
logs "bench --help in $copy/elsewhere"

# Programs run in the caller's folder, with what was built in the tree.
gives 0 run a.wav out/a.svg
logs "cmake --build --preset release -j $(nproc) --target spectrogram"
logs "spectrogram a.wav out/a.svg in $copy/elsewhere"
gives 0 bench DFTFwd_CToC_64_32fc --out here
logs "bench DFTFwd_CToC_64_32fc --out here in $copy/elsewhere"
gives 0 bench dct4 --longest 64
logs "bench_dct4 --longest 64 in $copy/elsewhere"
ORVGEN_PYTHON=$copy/tree/build/release/bin/python gives 0 bench python --out here
logs "python $copy/tree/bench/python/main.py --out $copy/tree/build/release/bench/python --out here in $copy/elsewhere"

# One test: the one of that name, else those that have it in their names; of these the cases asked for.
gives 0 test test_wht "Contract.*"
logs "ctest --preset release -j $(nproc) --output-junit test-results.junit -R ^test_wht(\.v3)?(\.[0-9]+)?\$ GTEST_FILTER=Contract.*"
logs "cmake --build --preset release -j $(nproc) --target bin/test_wht"
gives 0 test test_wht_bits
logs "ctest --preset release -j $(nproc) --output-junit test-results.junit -R ^test_wht_bits(\.v3)?(\.[0-9]+)?\$ GTEST_FILTER="
gives 0 test wht
logs "ctest --preset release -j $(nproc) --output-junit test-results.junit -R wht GTEST_FILTER="
gives 0 test list
grep -q "^wht: test_wht " "$copy/out" || problem "test list"
gives 0 test
grep -q "^dev: 1 tests in 1 programs, 0 skipped, all others passed" "$copy/out" || problem "no count"

# Packages are made of what git tracks, with what was changed and without what was deleted since; without git of all but
# what is built.
stand_in "$copy/bin/cpack" <<<'touch orvgen-1-Linux.tar.gz'
stand_in "$copy/bin/dpkg-buildpackage" <<<"find . -type f | sort >>'$copy/log'; cat dev >'$copy/packed'; touch ../a.deb"
packs() { gives 0 package && logs ./tools/dev/lib.sh && grep -q "^# changed$" "$copy/packed" || problem "package: not the tree's files"; }
mkdir "$copy/tree/a folder"
touch "$copy/tree/gone" "$copy/tree/a folder/a page"
echo /build >"$copy/tree/.gitignore"
tracking() { git -C "$copy/tree" -c user.name=a -c user.email=a "$@" || problem "git $*"; }
tracking init -q
tracking add .
tracking commit -q -m all
rm "$copy/tree/gone"
touch "$copy/tree/spectrogram.png"
echo "# changed" >>"$copy/tree/dev"
packs
logs "./a folder/a page"
logs_not "spectrogram.png\|gone"
grep -q "^dev: without files that git does not track: spectrogram.png$" "$copy/out" || problem "package: silent"
rm -rf "$copy/tree/.git"
packs
logs ./spectrogram.png
logs_not "./build"

# What fails gives 1, whatever the tool's own status.
CTEST_FAILS=8 gives 1 test || true
CMAKE_FAILS=3 gives 1 run

[[ $failures == 0 ]] && echo "all as it should be"
exit $((failures > 0))
