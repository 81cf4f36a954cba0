# SPDX-License-Identifier: MIT
#: ./dev abi                          writes the kept binary interface, tests/abi/kept.xml, again
# shellcheck shell=bash
takes 0 "$@"
need build test
tests/abi/compare.sh "$root" gcc --write
say "wrote tests/abi/kept.xml"
