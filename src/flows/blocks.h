// SPDX-License-Identifier: MIT
// What each node of a plan means: all of Flow::run.
//
// Included where the flows of a kind of values are compiled (flow.cpp) and nowhere else.
#pragma once

#include "cooley_tukey.h"
#include "direct.h"
#include "good_thomas.h"
#include "lanes.h"
#include "rader.h"

namespace orvgen::flows {

template <class V>
Sequence<V> Flow<V>::run(const Plan& plan, long e, const Sequence<V>& x) {
    ++depth_;
    Sequence<V> y;
    const bool isTurned = e != 1;
    if (plan.transform == Transform::Odd && isTurned)
        y = oddBinsBy(e, plan.length, runNode(plan, 1, x));
    else if (plan.transform == Transform::InverseOdd && isTurned)
        y = runNode(plan, 1, oddBinsFrom(e, plan.length, x));
    else
        y = runNode(plan, e, x);
    --depth_;
    return y;
}

template <class V>
Sequence<V> Flow<V>::runNode(const Plan& plan, long e, const Sequence<V>& x) {
    if (const auto* block = plan.as<plan::Block>()) {
        switch (plan.transform) {
            case Transform::Real:
                return directReal(*this, plan.length, *block, e, x);
            case Transform::InverseReal:
                return directInverseReal(*this, plan.length, *block, e, x);
            case Transform::Odd:  // two points
                return {{x[0].re, -x[1].re}};
            case Transform::InverseOdd:
                return {realNumber<V>(x[0].re.formed()), realNumber<V>(-x[0].im.formed())};
            default:
                break;
        }
    }
    if (const auto* join = plan.as<plan::GoodThomas>()) {
        switch (plan.transform) {
            case Transform::Odd:
                return goodThomasOdd(*this, *join, x);
            case Transform::InverseOdd:
                return inverseGoodThomasOdd(*this, *join, x);
            case Transform::InverseReal:
                return inverseGoodThomas(*this, plan, *join, e, x);
            default:
                return goodThomas(*this, plan, *join, e, x);
        }
    }
    if (const auto* join = plan.as<plan::CooleyTukey>())
        return isInverse(plan.transform) ? inverseCooleyTukey(*this, plan, *join, e, x)
                                         : cooleyTukey(*this, plan, *join, e, x);
    if (const auto* rader = plan.as<plan::RealRader>())
        return raderReal(*this, *rader, plan.length, e, x);
    if (const auto* rader = plan.as<plan::InverseRealRader>())
        return raderInverseReal(*this, *rader, plan.length, e, x);
    if (const auto* lanes = plan.as<plan::Lanes>()) return complexByLanes(*this, *lanes, e, x);
    if (const auto* odd = plan.as<plan::Alternating>())
        return isInverse(plan.transform) ? alternatingInverseOdd(*this, *odd->plan, x)
                                         : alternatingOdd(*this, *odd->plan, x);
    if (const auto* block = plan.as<plan::Renumbered>()) return renumbered(*this, *block, e, x);
    throw std::logic_error("no flow for a plan of length " + std::to_string(plan.length));
}

}  // namespace orvgen::flows
