#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# names.sh INCLUDE VALUES COMPILER: every type, enumerator and macro of the public headers is in VALUES.
set -euo pipefail
include=$1 values=$2 cc=$3
code=$("$cc" -E -P -I"$include" "$include/orvgen_batch.h")
names=$(
    "$cc" -dM -E -I"$include" "$include/orvgen_batch.h" | sed -n 's/^#define \(ORV[A-Za-z0-9_]*\).*/\1/p' | grep -v '_H$'
    grep -oE '\b[oO]rv[A-Za-z0-9_]*\b' <<<"$code" | grep -vE '^orvg'
)
missing=0 checked=0
for name in $(sort -u <<<"$names"); do
    checked=$((checked + 1))
    grep -qw -- "$name" "$values" || { echo "FAILED: $name is not in $values" && missing=1; }
done
((checked > 30)) || { echo "FAILED: only $checked names found" && exit 1; }
((missing == 0)) && echo "all $checked public names are in $values"
exit $missing
