// SPDX-License-Identifier: MIT
// The loop around the odd-frequency kernels, one group of sequences in the lanes at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orvgen.h"

namespace orvgen::dct4 {

// Sequences of one stride. The samples of a sequence's first half run up from position a, those of
// its second half, the mirrored ones, down from a + b = 2N - 1 - a; lane l has the start l further
// on. Results stand from position c on, real and imaginary parts alternating in steps of the
// component stride.
template <class Real>
struct SequenceWalk {
    const Real* src;
    Real* dst;
    std::int32_t a, b, c;  // of the first group
    std::ptrdiff_t sampleStride;
    std::ptrdiff_t componentStride;
    std::int32_t count;       // groups
    std::int32_t sourceStep;  // from group to group: a moves on by it, a + b back
    std::int32_t dstStep;
};

// Runs the kernel of a rule 1 to 6, size 2 to 64; any other rule gives orvErrPlan.
template <class Real>
OrvStatus oddFrequencyKernel(std::int32_t rule, const SequenceWalk<Real>& walk);

}  // namespace orvgen::dct4
