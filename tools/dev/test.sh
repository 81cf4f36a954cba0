# SPDX-License-Identifier: MIT
#: ./dev test [NAME [CASES]]          builds and runs all tests, those whose name has NAME in it, of these the CASES
#: ./dev test -L LABEL                the tests of a room (complex, wht, examples ...); arguments with a dash go to ctest
#: ./dev test list                    the tests there are, with their labels
# CASES is a filter of GoogleTest: './dev test test_wht "WhtContract.*"'. Builds only what the chosen tests run. The last
# line counts the cases.
# shellcheck shell=bash

# files_of_tests [CTEST ARGUMENTS]: the built files that the chosen tests run, by the paths that the builder knows them
# by; "all" where a test is given the build folder and none of its files, so that it may need any.
files_of_tests() {
    ctest --preset "$preset" -N -V "$@" | awk -v root="$PWD/$build/" '
        NR == FNR { sub(/:[^:]*$/, ""); known[$0] = 1; next }
        # A program that is not built yet has no command.
        /^Could not find executable / {
            file = substr($0, length("Could not find executable " root) + 1)
            files[file in known ? file : "all"]
        }
        /^[0-9]+: Test command: / {
            found = inside = 0
            # The program has its spaces escaped, its arguments stand in quotes.
            sub(/^[0-9]+: Test command: /, "")
            count = split($0, word, "\"")
            sub(/ $/, "", word[1])
            gsub(/\\ /, " ", word[1])
            for (i = 1; i <= count; i += i == 1 ? 1 : 2) {
                file = word[i]
                if (index(file "/", root) != 1) continue
                inside = 1
                file = substr(file, length(root) + 1)
                if (!(file in known)) continue
                files[file]
                found = 1
            }
            if (inside && !found) files["all"]
        }
        END { for (file in files) print file }' <(ninja -C "$build" -t targets all) -
}

# names_of_tests [CTEST ARGUMENTS]
names_of_tests() { ctest --test-dir "$build" -N "$@" | sed -n 's/^ *Test *#[0-9]*: //p'; }

list_tests() {
    local label
    for label in $(ctest --test-dir "$build" --print-labels | sed -n 's/^  *//p'); do
        printf '%s: %s\n' "$label" "$(names_of_tests -L "^$label\$" | xargs)" | fold -s -w 110 | sed '2,$ s/^/    /'
    done
}

# Counts what the last run of ctest did: cases of the test programs by their own reports, other tests one each. What a
# case has recorded as its summary is said before.
count_tests() {
    local junit=$1 results=$2
    awk -v results="$results" '
        function attribute(name,   text) {
            if (!match($0, "[ <]" name "=\"[^\"]*\"")) return ""
            text = substr($0, RSTART, RLENGTH); sub(/^[^"]*"/, "", text); sub(/"$/, "", text)
            return text
        }
        /<testcase / && FILENAME == ARGV[1] {
            ++programs
            if (attribute("status") == "fail") ++failed
            if (attribute("status") == "notrun" || attribute("status") == "disabled") ++skipped
            report = results "/" attribute("name") ".xml"
            known = 0
            while ((getline line < report) > 0) {
                known = 1
                if (line ~ /<testcase / && line !~ /status="notrun"/) ++tests
                if (line ~ /result="skipped"/) ++skipped
                if (sub(/.*<property name="summary" value="/, "", line)) {
                    sub(/".*/, "", line)
                    print "dev: " line
                }
            }
            close(report)
            if (!known) ++tests
        }
        END {
            printf "dev: %d tests in %d programs, %d skipped, %s\n", tests, programs, skipped,
                   failed ? failed " programs FAILED" : tests ? "all others passed" : "none ran"
            exit !tests
        }' "$junit"
}

need build test examples
configure
if [[ ${1:-} == list ]]; then
    takes 1 "$@"
    list_tests
    exit
fi
# ctest takes an option without its value for none at all.
[[ $# == 0 || ! ${!#} =~ ^(-L|-LE|-R|-E|-I|--label-regex|--label-exclude|--tests-regex|--exclude-regex|--tests-information)$ ]] ||
    misused "test: ${!#} takes a value (./dev help test)"
chosen=("$@")
[[ $# == 0 || -n $1 ]] || misused "test: the name is empty (./dev test list)"
if [[ $# -gt 0 && $1 != -* ]]; then
    takes 2 "$@"
    chosen=(-R "$1")
    [[ -z $(names_of_tests -R "^$1(\.v3)?(\.[0-9]+)?\$") ]] || chosen=(-R "^$1(\.v3)?(\.[0-9]+)?\$")
    [[ $# == 1 ]] || export GTEST_FILTER=$2
fi
[[ -n $(names_of_tests "${chosen[@]}") ]] || misused "no test for: $* (./dev test list)"
files=(all)
[[ ${#chosen[@]} == 0 ]] || mapfile -t files < <(files_of_tests "${chosen[@]}")
[[ ${#files[@]} == 0 ]] || make_targets "${files[@]}"
say "testing"
rm -rf "$build/test-results"
status=0
ctest --preset "$preset" -j "$jobs" --output-junit test-results.junit "${chosen[@]}" || status=1
count_tests "$build/test-results.junit" "$build/test-results" || status=1
exit $status
