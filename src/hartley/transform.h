// SPDX-License-Identifier: MIT
// Both ways to a Hartley transform. Included where they are compiled for a kind of values.
#pragma once

#include <stdexcept>

#include "flows/sums.h"
#include "hartley.h"
#include "realdft/forward.h"
#include "realdft/inverse.h"

namespace orvgen::hartley {

// Length 8 is the forward flow with the difference v - q of bin 3 the way round that its outputs
// are made of; the forward transform has it the other way round, for its sign.
template <class V>
std::vector<V> eightPoints(const std::vector<V>& x) {
    const kernelgen::Constant c = kernelgen::cosTurn(1, 8);
    const V t1 = narrow(c * (x[1] - x[5]));
    const V t2 = narrow(c * (x[3] - x[7]));
    const V u = x[0] - x[4], v = x[2] - x[6];
    const V p = t1 - t2, q = t1 + t2;
    const V e = x[0] + x[4], f = x[2] + x[6];
    const V g = x[1] + x[5], h = x[3] + x[7];
    return {(e + f) + (g + h), (u + p) + (v + q), (e - f) + (g - h), (u - p) - (v - q),
            (e + f) - (g + h), (u - p) + (v - q), (e - f) - (g - h), (u + p) - (v + q)};
}

// Lengths 5, 7 and 11 take the sine sum of the direct block as it stands, first term positive,
// where the forward transform has minus that sum. The sums differ in the sign of a zero and in
// directed rounding.
template <class V>
std::vector<V> directPoints(int n, const std::vector<V>& x) {
    const flows::DirectSums sums(n, plan::SumOrder{});
    std::vector<V> a, d;
    for (const long u : sums.cosinePairs) {
        a.push_back(x[u] + x[n - u]);
        d.push_back(x[u] - x[n - u]);
    }
    std::vector<V> h(x.size());
    h[0] = flows::sumOf(a) + x[0];
    for (long k = 1; 2 * k < n; ++k) {
        const V c = narrow(sums.cosineSum(k, x[0], a));
        const V s = narrow(sums.sineSum(k, d));
        h[k] = c + s;
        h[n - k] = c - s;
    }
    return h;
}

template <class V>
std::vector<V> throughForward(int n, const std::vector<V>& x, kernelgen::Graph* graph) {
    if (hasOwnLastLayer(n)) return n == 8 ? eightPoints(x) : directPoints(n, x);
    const flows::Sequence<V> bins = realdft::forwardBins(n, x, graph);
    if (graph != nullptr) graph->stage("sum and difference of the two parts of each bin");
    std::vector<V> h(x.size());
    for (std::size_t k = 0; k < bins.size(); ++k) {
        const V c = narrow(bins[k].re);
        if (bins[k].im.isEmpty()) {
            h[k] = c;
            continue;
        }
        const V s = -narrow(bins[k].im);
        h[k] = c + s;
        h[x.size() - k] = c - s;
    }
    return h;
}

template <class V>
std::vector<V> throughInverse(int n, const std::vector<V>& x, kernelgen::Graph* graph) {
    flows::Sequence<V> bins;
    bins.push_back({x[0], {}});
    for (std::size_t k = 1; 2 * k < x.size(); ++k) {
        const V &a = x[k], &b = x[x.size() - k];
        bins.push_back({a + b, b - a});
    }
    if (n % 2 == 0) bins.push_back({x[x.size() / 2], {}});
    return realdft::inverseSamples(*planOf(n), bins, graph);
}

template <class V>
std::vector<V> transform(int n, const std::vector<V>& x, kernelgen::Graph* graph) {
    const std::vector<V> h =
        runsForwardFlow(n) ? throughForward(n, x, graph) : throughInverse(n, x, graph);
    for (const V& v : h)
        if (v.negative()) throw std::logic_error("a Hartley output with a minus");
    return h;
}

}  // namespace orvgen::hartley
