// SPDX-License-Identifier: MIT
// The wrapper of the first stage. It runs nothing itself: the plan looks through it.
#pragma once

#include "dct4/layout.h"

namespace orvgen::dct4 {

template <class Real>
void setUp(Env3<Real>& node, std::int32_t n, std::int32_t length, std::int32_t r) {
    node.reserved = nullptr;
    node.active = 0;
    node.n = n;
    node.length = length;
    node.unused1 = mirrorOf(length);
    node.unused2 = 2 * r;
    node.r = r;
    node.unused3 = length;
    node.unused4 = r;
}

template <class Real, class Receiver>
std::int32_t layOut(Env3<Real>& node, Receiver& to) {
    if (node.r % lanes<Real> != 0) {
        return refused;
    }
    node.active = 1;
    return to.child(Place<Env5<Real>>(to), node.children, node.transformRole, node.n, node.length,
                    node.r);
}

template <class Real>
void giveBackArray(const Env3<Real>&) {}

}  // namespace orvgen::dct4
