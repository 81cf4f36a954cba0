// SPDX-License-Identifier: MIT
// One level of the recursion of an odd-frequency transform: inner transforms into the scratch, then
// the join of their results.
#pragma once

#include "dct4/layout.h"

namespace orvgen::dct4 {

template <class Real>
void setUp(Env7<Real>& node, std::int32_t n, std::int32_t length, std::int32_t inStride,
           std::int32_t outStride) {
    node.scratch = nullptr;
    node.active = 0;
    node.n = n;
    node.r = 0;
    node.length = length;
    node.unused1 = length;
    node.inStride = inStride;
    node.scratchLength = length;
    node.outStride = outStride;
}

template <class Real, class Receiver>
std::int32_t layOut(Env7<Real>& node, Receiver& to) {
    node.active = 1;
    if (divisorsIntNonTriv(&node.r, node.n / 2) != planned) {
        return refused;
    }
    const Place<Env8<Real>> join(to);
    const NodeHeader* frequency =
        to.function(Place<EnvLambda<Real>>(to), node.children, node.n, node.r);
    std::int32_t status = to.child(join, node.children, node.joinRole, node.n, node.r, node.length,
                                   node.outStride, frequency);
    if (status != planned) {
        return status;
    }
    status = to.child(Place<Env9<Real>>(to), node.children, node.innerRole, node.n / node.r,
                      node.length, node.r, node.inStride, node.outStride);
    if (status != planned) {
        return status;
    }
    to.scratch(node.scratch, node.scratchLength);
    return planned;
}

template <class Real>
void giveBackArray(const Env7<Real>& node) {
    giveBack(node.arena, node.scratch, node.scratchLength);
}

// a, b: where the first lane's sequence starts in src, and its mirror offset 2N - 1 - 2a; c: where
// its first result stands in dst.
template <class Real>
OrvStatus compute(const Env7<Real>& node, Real* dst, const Real* src, std::int32_t a,
                  std::int32_t b, std::int32_t c) {
    if (node.active != 1) {
        return orvErrPlan;
    }
    const auto& inner = childOf<Env9<Real>>(node.innerRole);
    const OrvStatus status = Operations<Env9<Real>>::compute(&inner, node.scratch, src, a, b, c);
    if (status != orvOk) {
        return status;
    }
    const auto& join = childOf<Env8<Real>>(node.joinRole);
    return Operations<Env8<Real>>::compute(&join, dst, node.scratch, c, c);
}

}  // namespace orvgen::dct4
