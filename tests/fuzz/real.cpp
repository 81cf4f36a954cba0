// SPDX-License-Identifier: MIT
// The real transforms of every length and layout, forward and inverse.
#include "fuzz/lengths.h"

namespace orvgen::test::fuzz {
namespace {

// clang-format off
#define CCS_SIZE(N) (2 * ((N) / 2 + 1))
#define SAME(NAME, N, T) FUZZ_KERNEL(NAME, N, T, N, N, 0)
#define TO_CCS(NAME, N, T) FUZZ_KERNEL(NAME, N, T, N, CCS_SIZE(N), 0)
#define FROM_CCS(NAME, N, T) FUZZ_KERNEL(NAME, N, T, CCS_SIZE(N), N, 0)
#define FAMILIES(T)                           \
    ORVGEN_LENGTHS(TO_CCS, DFTFwd_RToCCS, T)   \
    ORVGEN_LENGTHS(SAME, DFTFwd_RToPack, T)    \
    ORVGEN_LENGTHS(SAME, DFTFwd_RToPerm, T)    \
    ORVGEN_LENGTHS(FROM_CCS, DFTInv_CCSToR, T) \
    ORVGEN_LENGTHS(SAME, DFTInv_PackToR, T)    \
    ORVGEN_LENGTHS(SAME, DFTInv_PermToR, T)
// clang-format on
const Kernel kernels[] = {FAMILIES(32f) FAMILIES(64f)};

}  // namespace
}  // namespace orvgen::test::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orvgen::test::fuzz::Input input(data, size);
    orvgen::test::fuzz::fuzzLengths(input, orvgen::test::fuzz::kernels);
    return 0;
}
