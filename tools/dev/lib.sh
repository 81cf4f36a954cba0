# SPDX-License-Identifier: MIT
# What the commands share: messages, packages, building. Sourced by ./dev, which sets root, caller, preset, build, jobs
# and command.
# shellcheck shell=bash

say() { printf 'dev: %s\n' "$*"; }
# Exit statuses: 1 where the work fails, 2 where the command was called wrongly.
fail() {
    printf 'dev: %s\n' "$*" >&2
    exit 1
}
misused() {
    printf 'dev: %s\n' "$*" >&2
    exit 2
}

# takes MOST ARGUMENTS...: refuses more arguments than the command has.
takes() {
    local most=$1
    shift
    [[ $# -le most ]] || misused "$command: not expected: ${*:most+1} (./dev help $command)"
}

# Runs a command silently into a log of its own; shows the log's end where the command fails.
quietly() {
    local log=$1
    shift
    mkdir -p "$(dirname "$log")"
    "$@" >"$log" 2>&1 || {
        tail -n 40 "$log" >&2
        fail "failed: $* (all of it: $log)"
    }
}

# The groups of tools/packages.txt, and the packages that it lists under some of them.
groups() { sed -n 's/^# \([a-z]*\)$/\1/p' tools/packages.txt; }
packages() {
    awk -v wanted=" $* " '/^#/ { group = " " $2 " " } /^[^#]/ && index(wanted, group) { print $1 }' tools/packages.txt
}

# need GROUP...: install what is missing of these groups, or name it.
need() {
    command -v dpkg-query >/dev/null || return 0
    local package missing=()
    for package in $(packages "$@"); do
        [[ $(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null) == ii* ]] || missing+=("$package")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0
    [[ $(id -u) == 0 ]] || fail "these packages are missing, install them as root: apt-get install ${missing[*]}"
    say "installing ${#missing[@]} packages: ${missing[*]}" >&2
    export DEBIAN_FRONTEND=noninteractive
    quietly build/apt-update.log apt-get -o DPkg::Lock::Timeout=300 update
    quietly build/apt-install.log apt-get -o DPkg::Lock::Timeout=300 install -y --no-install-recommends "${missing[@]}"
}

# configure [CMAKE ARGUMENTS]: the build folder of the preset.
configure() {
    grep -q "\"name\": \"$preset\"" CMakePresets.json || misused "no preset $preset in CMakePresets.json (ORVGEN_PRESET)"
    quietly "build/$preset-configure.log" cmake --preset "$preset" "$@"
}

# cached NAME: what the build folder is configured with.
cached() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }

# make_targets TARGET...: build, with the builder's own progress; on stderr, as stdout may be a page to keep.
make_targets() {
    say "building ($build)" >&2
    cmake --build --preset "$preset" -j "$jobs" --target "$@" >&2 || fail "the build failed"
}

# made TARGET...: installs what building needs, configures and builds.
made() {
    need build test examples
    configure
    make_targets "$@"
}

# run_for_caller PROGRAM ARGUMENTS...: a built program, in the caller's folder, so that relative paths are the caller's.
run_for_caller() {
    local program=$root/$build/bin/$1
    shift
    (cd "$caller" && "$program" "$@")
}

# keep TABLE PROGRAM: what the program prints becomes a table of tests/data.
keep() {
    made "$2"
    "$build/bin/$2" >"$build/$1"
    mv "$build/$1" "tests/data/$1"
    say "wrote tests/data/$1"
}
