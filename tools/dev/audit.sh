#: ./dev audit                        all tests with sanitizers, unoptimised and with clang
# shellcheck shell=bash
takes 0 "$@"
need build test examples check
for p in asan debug clang; do
    say "audit: preset $p"
    ORVGEN_PRESET=$p ./dev test
done
