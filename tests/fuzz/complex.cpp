// SPDX-License-Identifier: MIT
// The complex transforms of every length.
#include "fuzz/lengths.h"

namespace orvgen::test::fuzz {
namespace {

#define SINGLE(NAME, N, T) FUZZ_KERNEL(NAME, N, T, N, N, (N == 47 || N == 59 ? 8 : 0))
#define DOUBLE(NAME, N, T) FUZZ_KERNEL(NAME, N, T, N, N, 0)
const Kernel kernels[] = {
    ORVGEN_LENGTHS(SINGLE, DFTFwd_CToC, 32fc) ORVGEN_LENGTHS(SINGLE, DFTInv_CToC, 32fc)
        ORVGEN_LENGTHS(DOUBLE, DFTFwd_CToC, 64fc) ORVGEN_LENGTHS(DOUBLE, DFTInv_CToC, 64fc)};

}  // namespace
}  // namespace orvgen::test::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orvgen::test::fuzz::Input input(data, size);
    orvgen::test::fuzz::fuzzLengths(input, orvgen::test::fuzz::kernels);
    return 0;
}
