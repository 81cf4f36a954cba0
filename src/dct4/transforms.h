// SPDX-License-Identifier: MIT
// What the nodes env5 and env9 do alike: both run odd-frequency transforms of n points, by a kernel
// or, where n has none, by an env7 for each group of sequences. They differ in where the sequences
// stand.
#pragma once

#include "dct4/layout.h"
#include "dct4/oddfrequency.h"

namespace orvgen::dct4 {

template <class Real>
void setUpTransforms(TransformNode<Real>& node, std::int32_t n, std::int32_t length) {
    node.reserved = nullptr;
    node.rule = 0;
    node.n = n;
    node.length = length;
}

// The strides are those from sample to sample, and from component to component of the results.
template <class Real, class Receiver>
std::int32_t layOutTransforms(TransformNode<Real>& node, Receiver& to, std::int32_t inStride,
                              std::int32_t outStride) {
    node.rule = ruleOfOddFrequency(node.n);
    if (node.rule != recursionRule) {
        return planned;
    }
    return to.child(Place<Env7<Real>>(to), node.children, node.recursionRole, node.n, node.length,
                    inStride, outStride);
}

template <class Real>
void giveBackArray(const TransformNode<Real>&) {}

template <class Real>
OrvStatus runTransforms(const TransformNode<Real>& node, const SequenceWalk<Real>& walk) {
    if (node.rule != recursionRule) {
        return oddFrequencyKernel(node.rule, walk);
    }
    const auto& recursion = childOf<Env7<Real>>(node.recursionRole);
    for (std::int32_t i = 0; i < walk.count; ++i) {
        const OrvStatus status = Operations<Env7<Real>>::compute(
            &recursion, walk.dst, walk.src, walk.a + i * walk.sourceStep,
            walk.b - 2 * i * walk.sourceStep, walk.c + i * walk.dstStep);
        if (status != orvOk) {
            return status;
        }
    }
    return orvOk;
}

}  // namespace orvgen::dct4
