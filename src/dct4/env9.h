// SPDX-License-Identifier: MIT
// The inner transforms of a recursion level: r' sequences of n' points.
#pragma once

#include "dct4/transforms.h"

namespace orvgen::dct4 {

// The strides are those of the env7 above: its sequence is taken apart into r of them.
template <class Real>
void setUp(Env9<Real>& node, std::int32_t n, std::int32_t length, std::int32_t r,
           std::int32_t inStride, std::int32_t outStride) {
    setUpTransforms(node, n, length);
    node.unused1 = length;
    node.inStride = r * inStride;
    node.sequenceStride = inStride;
    node.count = r;
    node.unused2 = length;
    node.outStride = r * outStride;
    node.sequenceOutStride = outStride;
}

template <class Real, class Receiver>
std::int32_t layOut(Env9<Real>& node, Receiver& to) {
    return layOutTransforms(node, to, node.inStride, node.outStride);
}

// One group of every sequence; a, b, c as for env7.
template <class Real>
OrvStatus compute(const Env9<Real>& node, Real* dst, const Real* src, std::int32_t a,
                  std::int32_t b, std::int32_t c) {
    return runTransforms(node, SequenceWalk<Real>{.src = src,
                                                  .dst = dst,
                                                  .a = a,
                                                  .b = b,
                                                  .c = c,
                                                  .sampleStride = node.inStride,
                                                  .componentStride = node.outStride,
                                                  .count = node.count,
                                                  .sourceStep = node.sequenceStride,
                                                  .dstStep = node.sequenceOutStride});
}

}  // namespace orvgen::dct4
