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
#include <string>
#include <vector>

#include "flows/blocks.h"
#include "kernelgen/kernel.h"
#include "packed_format.h"

namespace orvgen::realdft {

const flows::Plans& inversePlans();

// How one inverse transform is made: its plan, and the places that carry on unrounded.
struct Arrangement {
    flows::PlanPtr plan;
    std::vector<std::string> carries;
};
Arrangement inverseArrangement(int n, PackedFormat format);
// How length n is made, as the table of plans has it.
std::string inverseMethod(int n, PackedFormat format);

// The samples of a half spectrum whose full bins are doubled already, not scaled yet.
template <class V>
std::vector<V> inverseSamples(const Arrangement& arrangement, const flows::Bins<V>& bins,
                              kernelgen::Graph* graph = nullptr) {
    flows::Flow<V> flow(inversePlans(), graph);
    for (const std::string& place : arrangement.carries) flow.carry(place);
    std::vector<V> y = flow.inverseReal(arrangement.plan, 1, bins);
    for (V& v : y) {
        v = narrow(v);
        if (v.negative()) throw std::logic_error("a sample with a minus");
    }
    return y;
}

// The bins out of the elements of a packed array; `element` gives one of them as a value.
template <class V, class Element>
flows::Bins<V> packedBins(int n, PackedFormat format, Element&& element) {
    flows::Bins<V> bins;
    bins.push_back({element(realPosition(format, n, 0)), {}});
    for (int k = 1; k <= fullBins(n); ++k)
        bins.push_back({flows::Expression<V>::ofDouble(element(realPosition(format, n, k))),
                        flows::Expression<V>::ofDouble(element(imaginaryPosition(format, n, k)))});
    if (hasNyquist(n)) bins.push_back({element(realPosition(format, n, n / 2)), {}});
    return bins;
}

kernelgen::Graph inverseGraph(int n, PackedFormat format, kernelgen::Arithmetic arithmetic);

}  // namespace orvgen::realdft
