// The five transforms by plan: which block a plan means.
#pragma once

#include "complex.h"
#include "cooley_tukey.h"
#include "direct.h"
#include "flow.h"
#include "good_thomas.h"
#include "odd_frequency.h"
#include "rader.h"

namespace orvgen::flows {

[[noreturn]] inline void noBlock(const char* transform, const Plan& plan) {
    throw std::logic_error(std::string("no ") + transform + " block of length " +
                           std::to_string(plan.length) + " by this plan");
}

template <class V>
Bins<V> Flow<V>::real(const PlanPtr& plan, long e, const std::vector<V>& x) {
    const PlanPtr p = plans_->resolve(Transform::Real, plan);
    const int n = p->length;
    switch (plan->renumbering) {
        case Renumbering::None:
            break;
        case Renumbering::Samples: {
            std::vector<V> renumbered(x);
            for (int t = 0; t < n; ++t) renumbered[at(e * t, n)] = x[static_cast<std::size_t>(t)];
            return realBlock(*p, 1, renumbered);
        }
        case Renumbering::Bins: {
            const Bins<V> bins = realBlock(*p, 1, x);
            Bins<V> renumbered;
            for (int k = 0; 2 * k <= n; ++k) renumbered.push_back(binAt(bins, n, e * k));
            return renumbered;
        }
    }
    return realBlock(*p, e, x);
}

template <class V>
Bins<V> Flow<V>::realBlock(const Plan& plan, long e, const std::vector<V>& x) {
    switch (plan.method) {
        case Method::Direct:
            return directReal(*this, plan.length, e, x);
        case Method::GoodThomas:
            return goodThomasReal(*this, plan, e, x);
        case Method::CooleyTukey:
            return cooleyTukeyReal(*this, plan, e, x);
        case Method::Rader:
            return raderReal(*this, plan, e, x);
        default:
            noBlock("real", plan);
    }
}

template <class V>
std::vector<V> Flow<V>::inverseReal(const PlanPtr& plan, long e, const Bins<V>& z) {
    const PlanPtr p = plans_->resolve(Transform::InverseReal, plan);
    switch (p->method) {
        case Method::Direct:
            return directInverseReal(*this, *p, e, z);
        case Method::GoodThomas:
            return goodThomasInverseReal(*this, *p, e, z);
        case Method::CooleyTukey:
            return cooleyTukeyInverseReal(*this, *p, e, z);
        case Method::InverseRader:
            return raderInverseReal(*this, *p, e, z);
        default:
            noBlock("inverse real", *p);
    }
}

template <class V>
Bins<V> Flow<V>::odd(const PlanPtr& plan, const Samples<V>& x) {
    if (plan->length % 2 == 1) return alternatingOdd(*this, plan, x);
    const PlanPtr p = plans_->resolve(Transform::Odd, plan);
    switch (p->method) {
        case Method::Direct:
            if (p->length == 2) return {{x[0], -x[1]}};
            break;
        case Method::GoodThomas:
            return goodThomasOdd(*this, *p, x);
        case Method::CooleyTukey:
            return cooleyTukeyOdd(*this, *p, x);
        default:
            break;
    }
    noBlock("odd-frequency", *p);
}

template <class V>
std::vector<V> Flow<V>::inverseOdd(const PlanPtr& plan, const Bins<V>& z) {
    if (plan->length % 2 == 1) return alternatingInverseOdd(*this, plan, z);
    const PlanPtr p = plans_->resolve(Transform::InverseOdd, plan);
    switch (p->method) {
        case Method::Direct:
            if (p->length == 2) return {z[0].re.formed(), -z[0].im.formed()};
            break;
        case Method::GoodThomas:
            return goodThomasInverseOdd(*this, *p, z);
        case Method::CooleyTukey:
            return cooleyTukeyInverseOdd(*this, *p, z);
        default:
            break;
    }
    noBlock("inverse odd-frequency", *p);
}

// By a plan of its own for complex rows, by the table's row of complex transforms, or else by the
// plan for real rows in lanes.
template <class V>
Bins<V> Flow<V>::complex(const PlanPtr& plan, const PlanPtr& complexPlan, long e,
                         const Bins<V>& z) {
    const PlanPtr named = complexPlan ? complexPlan : plan;
    PlanPtr own = complexPlan;
    if (named->method == Method::Named) own = plans_->find(Transform::Complex, named->length);
    if (!own) return complexByLanes(*this, named, e, z);
    switch (own->method) {
        case Method::GoodThomas:
            return goodThomasComplex(*this, *own, e, z);
        case Method::CooleyTukey:
            return cooleyTukeyComplex(*this, *own, e, z);
        case Method::Lanes:
            return complexByLanes(*this, own->parts[0], e, z);
        default:
            return complexByLanes(*this, own, e, z);
    }
}

template <class V>
Bins<V> Flow<V>::inverseComplex(const PlanPtr& plan, const PlanPtr& complexPlan, long e,
                                const Bins<V>& z) {
    const Bins<V> y = complex(plan, complexPlan, e, z);
    Bins<V> turned;
    for (std::size_t t = 0; t < y.size(); ++t) turned.push_back(y[(y.size() - t) % y.size()]);
    return turned;
}

}  // namespace orvgen::flows
