// SPDX-License-Identifier: MIT
// The real transforms of every length and layout, forward and inverse.
#include "fuzz/lengths.h"

namespace orvgen::test::fuzz {
namespace {

// clang-format off
#define FAMILIES(T)                                \
    ORVGEN_LENGTHS(FUZZ_KERNEL, DFTFwd_RToCCS, T)  \
    ORVGEN_LENGTHS(FUZZ_KERNEL, DFTFwd_RToPack, T) \
    ORVGEN_LENGTHS(FUZZ_KERNEL, DFTFwd_RToPerm, T) \
    ORVGEN_LENGTHS(FUZZ_KERNEL, DFTInv_CCSToR, T)  \
    ORVGEN_LENGTHS(FUZZ_KERNEL, DFTInv_PackToR, T) \
    ORVGEN_LENGTHS(FUZZ_KERNEL, DFTInv_PermToR, T)
// clang-format on
const Kernel kernels[] = {FAMILIES(32f) FAMILIES(64f)};

}  // namespace

void fuzz(Input& input) { fuzzLengths(input, kernels); }

}  // namespace orvgen::test::fuzz
