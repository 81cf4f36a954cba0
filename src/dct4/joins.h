// SPDX-License-Identifier: MIT
// The loop around the kernels that join the inner transforms of a recursion level.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dct4/elements.h"
#include "dct4/records.h"
#include "orvgen.h"

namespace orvgen::dct4 {

// Where a join of r' values finds them, one vector for a real and one for an imaginary part: value
// s at s and at r' + s times the source stride. Result f < r'/2 goes to `up` at f times the result
// stride, result r' - 1 - f to `down` likewise, each imaginary part a component stride behind its
// real part. The steps are from one join to the next.
template <class Real>
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
template <class Real>
JoinWalk<Real> nextJoin(const JoinWalk<Real>& walk) {
    JoinWalk<Real> next = walk;
    next.src += walk.sourceStep;
    next.first += walk.firstStep;
    next.second += walk.secondStep;
    next.up += walk.upStep;
    next.down += walk.downStep;
    return next;
}

// Vectors of one d in the first part of a table: all of them up to r' = 8, beyond that the three
// twiddles of each 4-point transform.
constexpr std::int32_t firstVectors(std::int32_t r) { return r <= 8 ? 2 * r - 2 : 6 * (r / 4); }

// The joins of a node for one group: all m' results of the inner transforms. Results
// Z(2m' f + d) run up with d, Z(2m' q + 2m' - 1 - d) down.
template <class Real>
JoinWalk<Real> joinWalk(const Env8<Real>& node, Real* dst, const Real* src) {
    const std::ptrdiff_t stride = node.stride;
    const std::ptrdiff_t m = node.m;
    const std::int32_t first = firstVectors(node.r);
    return {.src = src,
            .sourceStride = stride,
            .sourceStep = node.blockStride,
            .first = node.table,
            .firstStep = first * lanes<Real>,
            .second = node.table + m * first * lanes<Real>,
            .secondStep = (2 * node.r - 2 - first) * lanes<Real>,
            .up = dst,
            .down = dst + (2 * m - 1) * 2 * stride,
            .resultStride = 2 * m * 2 * stride,
            .componentStride = stride,
            .upStep = 2 * stride,
            .downStep = -2 * stride,
            .count = node.m};
}

// Runs the kernel of a rule 1 to 5, r' = 2 to 32; any other rule gives orvErrPlan.
template <class Real>
OrvStatus joinKernel(std::int32_t rule, const JoinWalk<Real>& walk);

}  // namespace orvgen::dct4
