# SPDX-License-Identifier: MIT
#: ./dev datasheet [NAME...]          counts, code, speed (of the last bench) and errors of all kernels, or of those named
# Written to build/<preset>/datasheet.md. A NAME as for ./dev show.
# shellcheck shell=bash
made write_datasheet
"$build/bin/write_datasheet" "$build/bench/table.csv" "$@" >"$build/datasheet.part"
mv "$build/datasheet.part" "$build/datasheet.md"
say "wrote $build/datasheet.md"
