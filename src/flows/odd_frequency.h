// Transforms at the odd frequencies (2j+1)/(2n), without a join: odd lengths and length 2.
//
// For odd n, (-1)^t turns the odd frequencies into the ordinary ones: X[(n-1)/2 - j] is the
// conjugate of bin j of the samples with alternating signs. Signs cost nothing.
#pragma once

#include "flow.h"

namespace orvgen::flows {

template <class V>
V alternated(const V& x, std::size_t t) {
    return t % 2 == 0 ? x : -x;
}

template <class V>
Bins<V> alternatingOdd(Flow<V>& flow, const PlanPtr& plan, const Samples<V>& x) {
    std::vector<V> alternating;
    for (std::size_t t = 0; t < x.size(); ++t) alternating.push_back(alternated(x[t].formed(), t));
    const Bins<V> bins = flow.real(plan, 1, alternating);
    Bins<V> half;
    for (std::size_t j = bins.size(); j-- > 0;) half.push_back(conj(bins[j]));
    return half;
}

template <class V>
std::vector<V> alternatingInverseOdd(Flow<V>& flow, const PlanPtr& plan, const Bins<V>& z) {
    Bins<V> bins;
    for (std::size_t j = z.size(); j-- > 0;) bins.push_back(conj(z[j]));
    std::vector<V> y = flow.inverseReal(plan, 1, bins);
    for (std::size_t t = 0; t < y.size(); ++t) y[t] = alternated(y[t], t);
    return y;
}

}  // namespace orvgen::flows
