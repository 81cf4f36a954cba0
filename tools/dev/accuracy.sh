# SPDX-License-Identifier: MIT
#: ./dev accuracy                     measures all kernels' errors again and writes docs/accuracy.md
# shellcheck shell=bash
takes 0 "$@"
made write_accuracy
"$build/bin/write_accuracy" >"$build/accuracy.md"
mv "$build/accuracy.md" docs/accuracy.md
say "wrote docs/accuracy.md"
