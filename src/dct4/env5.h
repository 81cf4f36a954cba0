// SPDX-License-Identifier: MIT
// The first stage: r odd-frequency transforms of n points, the samples taken from the input.
#pragma once

#include "dct4/together.h"
#include "dct4/transforms.h"

namespace orvgen::dct4 {

template <class Real>
void setUp(Env5<Real>& node, std::int32_t n, std::int32_t length, std::int32_t r) {
    setUpTransforms(node, n, length);
    node.mirror = mirrorOf(length);
    node.blockLength = 2 * r;
    node.groups = r / lanes<Real>;
    node.unused1 = length;
    node.r = r;
}

template <class Real, class Receiver>
std::int32_t layOut(Env5<Real>& node, Receiver& to) {
    return layOutTransforms(node, to, node.blockLength, node.r);
}

// The groups of sequences start next to each other, in the input as in the results.
template <class Real>
OrvStatus compute(const Env5<Real>& node, Real* dst, const Real* src) {
    const SequenceWalk<Real> walk{.src = src,
                                  .dst = dst,
                                  .a = 0,
                                  .b = node.mirror,
                                  .c = 0,
                                  .sampleStride = node.blockLength,
                                  .componentStride = node.r,
                                  .count = node.groups,
                                  .sourceStep = lanes<Real>,
                                  .dstStep = lanes<Real>};
    if (node.rule == recursionRule && worthTogether<Real>(node.r, node.length)) {
        return computeTogether(childOf<Env7<Real>>(node.recursionRole), walk);
    }
    return runTransforms(node, walk);
}

}  // namespace orvgen::dct4
