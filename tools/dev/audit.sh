# SPDX-License-Identifier: MIT
#: ./dev audit                        all tests with sanitizers, unoptimised and with clang; clang-tidy over the tree
# shellcheck shell=bash
takes 0 "$@"
need build test examples check
for p in asan debug clang; do
    say "audit: preset $p"
    ORVGEN_PRESET=$p ./dev test
done
./dev tidy
