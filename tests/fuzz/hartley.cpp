// SPDX-License-Identifier: MIT
// The Hartley transforms of every length.
#include "fuzz/lengths.h"

namespace orvgen::test::fuzz {
namespace {

const Kernel kernels[] = {ORVGEN_LENGTHS(FUZZ_KERNEL, Hartley, 32f)
                              ORVGEN_LENGTHS(FUZZ_KERNEL, Hartley, 64f)};

}  // namespace

void fuzz(Input& input) { fuzzLengths(input, kernels); }

}  // namespace orvgen::test::fuzz
