// The loop around the kernels that join the inner transforms of a recursion level.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dct4/records.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

// Where a join of r' values finds them, one vector for a real and one for an imaginary part: value
// s at s and at r' + s times the source stride. Result f < r'/2 goes to `up` at f times the result
// stride, result r' - 1 - f to `down` likewise, each imaginary part a component stride behind its
// real part. The steps are from one join to the next.
struct JoinWalk {
    const Real* src;
    std::ptrdiff_t sourceStride;
    std::ptrdiff_t sourceStep;
    const Real* first;  // twiddles, read front to back
    std::ptrdiff_t firstStep;
    const Real* second;
    std::ptrdiff_t secondStep;
    Real* up;
    Real* down;
    std::ptrdiff_t resultStride;
    std::ptrdiff_t componentStride;
    std::ptrdiff_t upStep;
    std::ptrdiff_t downStep;
    std::int32_t count;
};

// The walk one join further on.
inline JoinWalk nextJoin(const JoinWalk& walk) {
    JoinWalk next = walk;
    next.src += walk.sourceStep;
    next.first += walk.firstStep;
    next.second += walk.secondStep;
    next.up += walk.upStep;
    next.down += walk.downStep;
    return next;
}

// The joins of a node for one group: all m' results of the inner transforms.
JoinWalk joinWalk(const Env8& node, Real* dst, const Real* src);

// Runs the kernel of a rule 1 to 5, r' = 2 to 32; any other rule gives orvErrPlan.
OrvStatus joinKernel(std::int32_t rule, const JoinWalk& walk);

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
