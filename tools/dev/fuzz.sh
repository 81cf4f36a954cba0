# SPDX-License-Identifier: MIT
#: ./dev fuzz [NAME [SECONDS]]        runs the fuzz targets, or one of them, for so long each (60)
# The names are complex, real, hartley, wht, dct4, batch. What breaks a promise is kept in build/<preset>/fuzz/.
# shellcheck shell=bash
takes 2 "$@"
names=(complex real hartley wht dct4 batch)
if [[ $# -gt 0 ]]; then
    [[ " ${names[*]} " == *" $1 "* ]] || misused "fuzz: no target $1; there are ${names[*]}"
    names=("$1")
fi
seconds=${2:-60}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || misused "fuzz: SECONDS is a number: $seconds"
made "${names[@]/#/fuzz_}"
for name in "${names[@]}"; do
    say "fuzzing $name for $seconds s"
    mkdir -p "$build/fuzz/$name"
    "$build/bin/fuzz_$name" -max_total_time="$seconds" -max_len=64 -verbosity=0 -print_final_stats=1 \
        -artifact_prefix="$build/fuzz/$name-" "$build/fuzz/$name" "tests/fuzz/corpus/$name" ||
        fail "$name breaks a promise; the input: $build/fuzz/$name-*"
done
