# SPDX-License-Identifier: MIT
#: ./dev help [COMMAND]               the commands, or one of them
# shellcheck shell=bash
takes 1 "$@"
if [[ $# == 1 ]]; then
    [[ -f tools/dev/$1.sh && $1 != lib ]] || misused "no command $1 (./dev help)"
    awk '!/^#/ { exit } !/^# (shellcheck|SPDX)/ { sub(/^#:? /, ""); print }' "tools/dev/$1.sh"
    exit
fi
for name in run test which python bench audit show datasheet accuracy figures digests abi fuzz faults package release site format tidy setup help; do
    [[ ! -f tools/dev/$name.sh ]] || sed -n 's/^#: //p' "tools/dev/$name.sh"
done
echo "The preset of CMakePresets.json is taken from ORVGEN_PRESET (release)."
