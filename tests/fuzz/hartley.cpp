// SPDX-License-Identifier: MIT
// The Hartley transforms of every length.
#include "fuzz/lengths.h"

namespace orvgen::test::fuzz {
namespace {

#define SAME(NAME, N, T) FUZZ_KERNEL(NAME, N, T, N, N, 0)
const Kernel kernels[] = {ORVGEN_LENGTHS(SAME, Hartley, 32f) ORVGEN_LENGTHS(SAME, Hartley, 64f)};

}  // namespace
}  // namespace orvgen::test::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orvgen::test::fuzz::Input input(data, size);
    orvgen::test::fuzz::fuzzLengths(input, orvgen::test::fuzz::kernels);
    return 0;
}
