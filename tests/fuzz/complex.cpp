// SPDX-License-Identifier: MIT
// The complex transforms of every length.
#include "fuzz/lengths.h"

namespace orvgen::test::fuzz {
namespace {

const Kernel kernels[] = {ORVGEN_LENGTHS(FUZZ_KERNEL, DFTFwd_CToC, 32fc) ORVGEN_LENGTHS(
    FUZZ_KERNEL, DFTInv_CToC, 32fc) ORVGEN_LENGTHS(FUZZ_KERNEL, DFTFwd_CToC, 64fc)
                              ORVGEN_LENGTHS(FUZZ_KERNEL, DFTInv_CToC, 64fc)};

}  // namespace

void fuzz(Input& input) { fuzzLengths(input, kernels); }

}  // namespace orvgen::test::fuzz
