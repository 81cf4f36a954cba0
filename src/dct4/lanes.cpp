// SPDX-License-Identifier: MIT
#include "dct4/lanes.h"

namespace orvgen::dct4 {

namespace {

template <class Real>
constexpr Multipliers<Real> inAllLanes() {
    Multipliers<Real> table{};
    for (int j = 0; j <= 64; ++j) {
        for (Real& lane : table.cosines[j]) {
            lane = cosineOf<Real>(2 * j);
        }
    }
    return table;
}

}  // namespace

constinit const Multipliers<float> multipliers32f = inAllLanes<float>();
constinit const Multipliers<double> multipliers64f = inAllLanes<double>();

}  // namespace orvgen::dct4
