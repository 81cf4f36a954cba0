// SPDX-License-Identifier: MIT
// The top node: radix, the two stages, the scratch between them.
#pragma once

#include "dct4/layout.h"

namespace orvgen::dct4 {

template <class Real>
void setUp(Env1<Real>& node, std::int32_t length) {
    node.scratch = nullptr;
    node.rule = 0;
    node.length = length;
}

template <class Real, class Receiver>
std::int32_t layOut(Env1<Real>& node, Receiver& to) {
    node.rule = ruleOfLength(node.length);
    if (node.rule != treeRule) {
        return planned;
    }
    if (divisorsIntNonTriv(&node.r, node.length / 2) != planned) {
        return refused;
    }
    const Place<Env2<Real>> stageTwo(to);
    const NodeHeader* twiddle =
        to.function(Place<EnvfCompose<Real>>(to), node.children, node.r, node.length);
    std::int32_t status =
        to.child(stageTwo, node.children, node.stageTwoRole, node.r, node.length, twiddle);
    if (status != planned) {
        return status;
    }
    status = to.child(Place<Env3<Real>>(to), node.children, node.stageOneRole, node.length / node.r,
                      node.length, node.r);
    if (status != planned) {
        return status;
    }
    to.scratch(node.scratch, node.length);
    return planned;
}

// Rules 1 to 5 have no scratch, and of a rule of no kind nothing is known.
template <class Real>
void giveBackArray(const Env1<Real>& node) {
    giveBack(node.arena, node.scratch, node.rule == treeRule ? node.length : 0);
}

}  // namespace orvgen::dct4
