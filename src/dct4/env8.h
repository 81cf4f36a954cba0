// SPDX-License-Identifier: MIT
// The join of a recursion level: its node and its table of twiddles.
#pragma once

#include "dct4/joins.h"
#include "dct4/layout.h"
#include "dct4/trig.h"

namespace orvgen::dct4 {

template <class Real>
void setUp(Env8<Real>& node, std::int32_t n, std::int32_t r, std::int32_t length,
           std::int32_t stride, const NodeHeader* frequency) {
    node.table = nullptr;
    node.rule = 0;
    node.r = r;
    node.unused1 = length;
    node.stride = stride;
    node.blockStride = 2 * r * stride;
    node.m = n / (2 * r);
    node.unused2 = length;
    node.unused3 = n / 2;
    node.unused4 = n - 1;
    node.unused5 = stride;
    node.unused6 = n / r;
    node.frequency = frequency;
}

template <class Real>
std::int32_t tableElements(const Env8<Real>& node) {
    return node.m * (2 * node.r - 2) * lanes<Real>;
}

// Fills the table front to back. Every angle starts at the frequency of block d,
// (2d + 1) / (2n'), in the family's type.
template <class Real>
class JoinTableWriter {
  public:
    explicit JoinTableWriter(const Env8<Real>& node)
        : frequency_(node.frequency), entry_(node.table) {}

    // Cosine and sine of pi (frequency(d) + g) unit k, all lanes alike, for k = 1 .. last. The sum
    // is formed in the family's type, the product in binary64, its result rounded to the family's
    // type: no step is more exact than that, in either family.
    void powers(std::int32_t d, std::int32_t g, double unit, std::int32_t last) {
        for (std::int32_t k = 1; k <= last; ++k) {
            put(cosPi(angle(d, g, unit, k)));
            put(sinPi(angle(d, g, unit, k)));
        }
    }

  private:
    Real angle(std::int32_t d, std::int32_t g, double unit, std::int32_t k) const {
        const Real sum =
            static_cast<Real>(owng_TFunc_IIIR_at(frequency_, d, 0, 0)) + static_cast<Real>(g);
        return static_cast<Real>(static_cast<double>(sum) * unit * static_cast<double>(k));
    }

    void put(Real value) {
        for (std::int32_t l = 0; l < lanes<Real>; ++l) {
            *entry_++ = value;
        }
    }

    const NodeHeader* frequency_;
    Real* entry_;
};

template <class Real>
void fillTable(const Env8<Real>& node) {
    JoinTableWriter<Real> table(node);
    // An angle of (2d + 1) pi / n is 2 / r' times pi frequency(d).
    const double unit = 2.0 / node.r;
    if (node.r <= 8) {
        for (std::int32_t d = 0; d < node.m; ++d) {
            table.powers(d, 0, unit, node.r - 1);
        }
        return;
    }
    // Two levels: the twiddles of the 4-point transforms, for every remainder g of the result's
    // number, and behind all of these the ones of the (r'/4)-point transforms, with four times the
    // angle.
    const std::int32_t inner = node.r / 4;
    for (std::int32_t d = 0; d < node.m; ++d) {
        for (std::int32_t g = 0; g < inner; ++g) {
            table.powers(d, g, unit, 3);
        }
    }
    for (std::int32_t d = 0; d < node.m; ++d) {
        table.powers(d, 0, 4 * unit, inner - 1);
    }
}

template <class Real>
std::int32_t chooseRule(const Env8<Real>& node) {
    return ruleOfPower(node.r);
}

template <class Real, class Receiver>
std::int32_t layOut(Env8<Real>& node, Receiver& to) {
    node.rule = Operations<Env8<Real>>::chooseRule(&node);
    if (node.rule == 0) {
        return refused;
    }
    to.table(node.table, tableElements(node), [&] { fillTable(node); });
    return planned;
}

template <class Real>
void giveBackArray(const Env8<Real>& node) {
    giveBack(node.arena, node.table, node.rule != 0 ? tableElements(node) : 0);
}

// The inner results lie from c0 on in src, the joined ones from c1 on in dst.
template <class Real>
OrvStatus compute(const Env8<Real>& node, Real* dst, const Real* src, std::int32_t c0,
                  std::int32_t c1) {
    return joinKernel(node.rule, joinWalk(node, dst + c1, src + c0));
}

}  // namespace orvgen::dct4
