#: ./dev datasheet [NAME...]          counts, code, speed (of the last bench) and errors: build/<preset>/datasheet.md
# shellcheck shell=bash
made write_datasheet
"$build/bin/write_datasheet" $(ls "$build/bench/table.csv" 2>/dev/null) >"$build/datasheet.md"
say "wrote $build/datasheet.md"
