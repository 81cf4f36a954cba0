// SPDX-License-Identifier: MIT
// The wrapper of the second stage. It runs nothing itself: the plan looks through it.
#pragma once

#include "dct4/layout.h"

namespace orvgen::dct4 {

template <class Real>
void setUp(Env2<Real>& node, std::int32_t r, std::int32_t length, const NodeHeader* twiddle) {
    node.reserved = nullptr;
    node.active = 0;
    node.r = r;
    node.length = length;
    node.unused1 = 2 * r;
    node.m = length / (2 * r);
    node.unused2 = length;
    node.unused3 = mirrorOf(length);
    node.unused4 = length / r;
    node.twiddle = twiddle;
}

template <class Real, class Receiver>
std::int32_t layOut(Env2<Real>& node, Receiver& to) {
    if (node.m % lanes<Real> != 0) {
        return refused;
    }
    node.active = 1;
    const NodeHeader* split = to.function(Place<EnvfSplit<Real>>(to), node.children, 2 * node.r,
                                          node.m / lanes<Real>, node.twiddle);
    return to.child(Place<Env4<Real>>(to), node.children, node.kernelRole, node.r, node.length,
                    split);
}

template <class Real>
void giveBackArray(const Env2<Real>&) {}

}  // namespace orvgen::dct4
