# SPDX-License-Identifier: MIT
#: ./dev setup GROUP...               installs packages by the groups of tools/packages.txt
# shellcheck shell=bash
[[ $# -gt 0 ]] || misused "setup: which group? There are $(groups | xargs)"
for group in "$@"; do
    groups | grep -qFx -- "$group" || misused "setup: no group $group; there are $(groups | xargs)"
done
need "$@"
