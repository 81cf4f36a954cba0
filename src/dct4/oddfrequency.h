// The loop around the odd-frequency kernels, one group of sequences in the lanes at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dct4/family.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

// A sequence has a start and a stride. The samples of its first half run up from the start, those
// of its second half, the mirrored ones, down from 2N - 1 less the start; lane l has the start l
// further on. Results have their real and imaginary parts alternating in steps of the component
// stride.
struct SequenceWalk {
    const Real* src;
    std::ptrdiff_t start;     // of the first group
    std::ptrdiff_t mirrored;  // 2N - 1 - start
    std::ptrdiff_t sampleStride;
    Real* dst;
    std::ptrdiff_t componentStride;
    std::int32_t count;         // groups
    std::ptrdiff_t sourceStep;  // from group to group
    std::ptrdiff_t dstStep;
};

// Runs the kernel of a rule 1 to 6, size 2 to 64; any other rule gives orvErrPlan.
OrvStatus oddFrequencyKernel(std::int32_t rule, const SequenceWalk& walk);

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
