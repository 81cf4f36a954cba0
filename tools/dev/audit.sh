# SPDX-License-Identifier: MIT
#: ./dev audit                        all tests with sanitizers, unoptimised and with clang; all batches; clang-tidy
# shellcheck shell=bash
takes 0 "$@"
need build test examples check
for p in asan debug clang; do
    say "audit: preset $p"
    ORVGEN_PRESET=$p ./dev test
done
say "audit: batches: each layout, count, source, flag and setting with each other"
ORVGEN_EXHAUSTIVE=1 ./dev test test_batch_bits
say "audit: batches on an evaluated processor, in each layout and count"
ORVGEN_EXHAUSTIVE=1 ./dev test test_batch_evaluated
if command -v qemu-x86_64 >/dev/null; then
    say "audit: batches on an emulated processor with AVX2"
    qemu-x86_64 -cpu max build/release/bin/test_batch_bits --gtest_filter='*/AVX2' --gtest_brief=1
fi
./dev tidy
