# SPDX-License-Identifier: MIT
#: ./dev faults [NAME...]             seeds known faults into a copy of the tree and shows which test catches each
#: ./dev faults list                  the faults there are, with what each breaks
#: ./dev faults anchors               only that every fault still finds its place in the text
#: ./dev faults sample                the anchors of all, and a few cheap faults
# A fault is a file of tests/faults, which CONTRIBUTING.md explains. Each is built alone, in build/faults (or
# ORVGEN_FAULTS), with the tests named in it; one that no test catches fails the command, as does one whose place in the
# text is gone.
# shellcheck shell=bash

copy=${ORVGEN_FAULTS:-$root/build/faults}
sample=(core-latencies docs-hartley-road rotation-sign)

# read_fault NAME: sets what, tests (a line each) and the edits: file, old and new text, one of each an edit.
read_fault() {
    local line part=what
    what='' tests=() edited=() old=() new=()
    while IFS= read -r line || [[ -n $line ]]; do
        case $line in
            'test: '*) tests+=("${line#test: }") ;;
            'file: '*) edited+=("${line#file: }") old+=('') new+=('') part= ;;
            '--- old') part=old ;;
            '--- new') part=new ;;
            *)
                case $part in
                    what) what+=${what:+ }$line ;;
                    old) old[-1]+=${old[-1]:+$'\n'}$line ;;
                    new) new[-1]+=${new[-1]:+$'\n'}$line ;;
                    *) fail "tests/faults/$1.fault: not understood: $line" ;;
                esac
                ;;
        esac
    done <"tests/faults/$1.fault"
    [[ -n $what && ${#tests[@]} -gt 0 && ${#edited[@]} -gt 0 ]] || fail "tests/faults/$1.fault: something is missing"
}

# seeded TREE NUMBER: the file that this edit is for, as the tree has it, with the edit; fails where the place is not
# there exactly once.
seeded() {
    OLD=${old[$2]} NEW=${new[$2]} perl -0777 -ne '
        my ($old, $new) = @ENV{"OLD", "NEW"};
        my $at = index($_, $old);
        exit 1 if $old eq "" || $old eq $new || $at < 0 || index($_, $old, $at + 1) >= 0;
        print substr($_, 0, $at), $new, substr($_, $at + length $old);' "$1/${edited[$2]}"
}

check_anchors() {
    local name i lost=0
    for name in "$@"; do
        read_fault "$name"
        for i in "${!edited[@]}"; do
            seeded "$root" "$i" >/dev/null || {
                printf 'dev: tests/faults/%s.fault: its place in %s is not there exactly once\n' "$name" "${edited[$i]}" >&2
                lost=1
            }
        done
    done
    [[ $lost == 0 ]] || fail "mend these faults: what they would break has moved"
}

# The copy becomes the tree; files whose bytes are the same stay as they are, with what is built of them.
copy_tree() {
    local line folder
    mkdir -p "$copy/build"
    { diff -rq -x build -x .git "$root" "$copy" || true; } | while IFS= read -r line; do
        case $line in
            "Files $root/"*)
                line=${line#"Files $root/"}
                cp "$root/${line%% and "$copy"/*}" "$copy/${line%% and "$copy"/*}"
                ;;
            "Only in $copy"*) line=${line#Only in } && rm -rf -- "${line%%: *}/${line#*: }" ;;
            "Only in $root"*)
                line=${line#Only in }
                folder=${line%%: *}
                cp -R "$folder/${line#*: }" "$copy${folder#"$root"}/"
                ;;
            *) fail "diff said: $line" ;;
        esac
    done
    [[ -d $copy/build/kernels || ! -d build/kernels ]] || cp -a build/kernels "$copy/build"
}

# tested LOG TEST [CASES]: 0 where the test, or these cases of it, pass in the copy, 1 where one fails, 2 where it could
# not be built. The test "build" is whether CASES, a target then, can be built.
tested() {
    local log=$1 test=$2 status=0
    if [[ $test == build ]]; then
        (cd "$copy" && cmake --build --preset "$preset" --target "$3" </dev/null) >"$log" 2>&1
        return
    fi
    (cd "$copy" && env ${3:+"GTEST_FILTER=$3"} ./dev test -R "^$test(\.[0-9]+)?\$" </dev/null) >"$log" 2>&1 || status=1
    ! grep -qE '^dev: (the build failed|failed: |no test for|.* none ran$)' "$log" || status=2
    return $status
}

# what_failed LOG: the cases that failed, three at most.
what_failed() {
    sed -nE 's/^[0-9: ]*\[  FAILED  \] ([A-Za-z0-9_/]+\.[A-Za-z0-9_/]+).*/\1/p' "$1" | sort -u |
        awk 'NR <= 3 { text = text (NR > 1 ? ", " : "") $0 } END { print text (NR > 3 ? " and " NR - 3 " more" : "") }'
}

# prepare NAME...: before anything is seeded, what these faults keep from being built is built in the copy, and the tests
# that catch the others pass there.
prepare() {
    local name test all=() targets=() log=$copy/build/before.log
    for name in "$@"; do
        read_fault "$name"
        for test in "${tests[@]}"; do
            if [[ $test == 'build '* ]]; then
                targets+=("${test#build }")
            elif [[ " ${all[*]} " != *" ${test%% *} "* ]]; then
                all+=("${test%% *}")
            fi
        done
    done
    if [[ ${#targets[@]} -gt 0 ]]; then
        say "without faults this has to be built: $(printf '%s\n' "${targets[@]}" | sort -u | xargs)"
        (cd "$copy" && cmake --preset "$preset" && cmake --build --preset "$preset" --target "${targets[@]}") \
            </dev/null >"$log" 2>&1 || {
            tail -n 30 "$log" >&2
            fail "it is not (all of it: $log)"
        }
    fi
    [[ ${#all[@]} -gt 0 ]] || return 0
    say "the tests in question have to pass without faults: ${all[*]}"
    tested "$log" "($(IFS='|' && echo "${all[*]}"))" || {
        tail -n 30 "$log" >&2
        fail "they do not (all of it: $log)"
    }
}

# Seeds one fault, runs its tests, and takes it back. Says which test caught it; fails where one of them did not.
try_fault() {
    local name=$1 i test cases status caught=() missed=() began=$SECONDS log=$copy/build/$1.log
    read_fault "$name"
    for i in "${!edited[@]}"; do
        seeded "$copy" "$i" >"$copy/build/seeded" || fail "$name: its place in ${edited[$i]} is gone"
        cp "$copy/build/seeded" "$copy/${edited[$i]}"
    done
    for test in "${tests[@]}"; do
        status=0
        # shellcheck disable=SC2086
        tested "$log" $test || status=$?
        cases=$(what_failed "$log")
        case $status in
            0) missed+=("$test") ;;
            1) caught+=("$test${cases:+ ($cases)}") ;;
            *) missed+=("$test (not built: $log)") ;;
        esac
    done
    for i in "${!edited[@]}"; do cp "$root/${edited[$i]}" "$copy/${edited[$i]}"; done
    printf '%-36s %5d s  %s\n' "$name" $((SECONDS - began)) \
        "${caught[*]:+caught by ${caught[*]}}${missed[*]:+ NOT CAUGHT by ${missed[*]}}"
    [[ ${#missed[@]} == 0 ]]
}

mapfile -t all_faults < <(find tests/faults -name '*.fault' -printf '%f\n' | sed 's/\.fault$//' | sort)
chosen=("$@")
case ${1:-} in
    list)
        takes 1 "$@"
        for name in "${all_faults[@]}"; do
            read_fault "$name"
            printf '%s (%s)\n    %s\n' "$name" "$(IFS=, && echo "${tests[*]}")" "$what"
        done
        exit
        ;;
    anchors)
        takes 1 "$@"
        check_anchors "${all_faults[@]}"
        say "${#all_faults[@]} faults find their places"
        exit
        ;;
    sample)
        takes 1 "$@"
        chosen=("${sample[@]}")
        ;;
    '') chosen=("${all_faults[@]}") ;;
esac
for name in "${chosen[@]}"; do
    [[ -f tests/faults/$name.fault ]] || misused "no fault $name (./dev faults list)"
done
check_anchors "${all_faults[@]}"
need build test examples
say "copying the tree to $copy"
copy_tree
prepare "${chosen[@]}"
survived=()
for name in "${chosen[@]}"; do try_fault "$name" || survived+=("$name"); done
[[ ${#survived[@]} == 0 ]] || fail "${#survived[@]} of ${#chosen[@]} faults were not caught: ${survived[*]}"
say "${#chosen[@]} faults, all caught"
