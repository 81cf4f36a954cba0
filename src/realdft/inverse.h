// SPDX-License-Identifier: MIT
// The inverse real transforms: N real samples of a half spectrum, N = 2..64.
//
//   y[n] = R[0] + sum over 0<k<N/2 of (2 R[k] cos(2 pi nk/N) - 2 I[k] sin(2 pi nk/N))
//          + (-1)^n R[N/2]
//
// The 2 stands in front: every term of a bin that is not alone is doubled first, in its own type,
// and may overflow there. Only where a doubled term goes into nothing but one product does the
// constant of that product take the 2.
#pragma once

#include <stdexcept>
#include <vector>

#include "flows/flow.h"
#include "kernelgen/kernel.h"
#include "plans.h"

namespace orvgen::realdft {

// The samples of a half spectrum whose full bins are doubled already, not scaled yet.
template <class V>
std::vector<V> inverseSamples(const plan::Plan& plan, const flows::Sequence<V>& bins,
                              kernelgen::Graph* graph = nullptr) {
    std::vector<V> y;
    for (const flows::Bin<V>& sample : flows::Flow<V>(graph).run(plan, 1, bins)) {
        y.push_back(narrow(sample.re));
        if (y.back().negative()) throw std::logic_error("a sample with a minus");
    }
    return y;
}

// The bins out of the elements of a packed array; `element` gives one of them as a value.
template <class V, class Element>
flows::Sequence<V> packedBins(int n, PackedFormat format, Element&& element) {
    flows::Sequence<V> bins;
    bins.push_back({element(realPosition(format, n, 0)), {}});
    for (int k = 1; k <= fullBins(n); ++k)
        bins.push_back({flows::Expression<V>::ofDouble(element(realPosition(format, n, k))),
                        flows::Expression<V>::ofDouble(element(imaginaryPosition(format, n, k)))});
    if (hasNyquist(n)) bins.push_back({element(realPosition(format, n, n / 2)), {}});
    return bins;
}

kernelgen::Graph inverseGraph(int n, PackedFormat format, kernelgen::Arithmetic arithmetic);

}  // namespace orvgen::realdft
