// SPDX-License-Identifier: MIT
// The second stage: the node of its kernel, and the table of twiddles.
#pragma once

#include "dct4/layout.h"
#include "dct4/visitingorder.h"

namespace orvgen::dct4 {

template <class Real>
void setUp(Env4<Real>& node, std::int32_t r, std::int32_t length, const NodeHeader* twiddle) {
    node.table = nullptr;
    node.rule = 0;
    node.r = r;
    node.unused1 = length;
    node.unused2 = 2 * r;
    node.unused3 = 2 * r * lanes<Real>;
    node.groups = length / (2 * r) / lanes<Real>;
    node.unused4 = length;
    node.mirror = mirrorOf(length);
    node.n = length / r;
    node.twiddle = twiddle;
}

template <class Real>
std::int32_t tableElements(const Env4<Real>& node) {
    return node.groups * 2 * node.r * lanes<Real>;
}

// cos g(p, c) and sin g(p, c) of the blocks c = lanes * i + l, in the order in which the kernel
// takes the p: it reads the table straight through.
template <class Real>
void fillTable(const Env4<Real>& node) {
    Real* entry = node.table;
    for (std::int32_t i = 0; i < node.groups; ++i) {
        for (std::int32_t position = 0; position < node.r; ++position) {
            const std::int32_t p = visitingOrder(node.r, position);
            for (std::int32_t component = 0; component < 2; ++component) {
                for (std::int32_t l = 0; l < lanes<Real>; ++l) {
                    *entry++ = static_cast<Real>(
                        owng_TFunc_IIIR_at(node.twiddle, i, l, 2 * p + component));
                }
            }
        }
    }
}

template <class Real, class Receiver>
std::int32_t layOut(Env4<Real>& node, Receiver& to) {
    node.rule = ruleOfStageTwo(node.r);
    if (node.rule == 0) {
        return refused;
    }
    to.table(node.table, tableElements(node), [&] { fillTable(node); });
    return planned;
}

template <class Real>
void giveBackArray(const Env4<Real>& node) {
    giveBack(node.arena, node.table, node.rule != 0 ? tableElements(node) : 0);
}

}  // namespace orvgen::dct4
