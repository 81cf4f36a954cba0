// The discrete Hartley transform of N real samples, N = 2..64:
//
//   H[k] = sum of x[n] (cos(2 pi nk/N) + sin(2 pi nk/N)), k = 0..N-1.
//
// It is a real Fourier transform in either direction. Of the forward one it takes the two sums of a
// bin X[k] = C - i S, H[k] = C + S and H[N-k] = C - S: one sum more for each output. Of the inverse
// one it feeds the bins Z[k] = (x[k] + x[N-k], x[N-k] - x[k]), since
//
//   H[n] = x[0] + sum over 0<k<N/2 of ((x[k] + x[N-k]) cos + (x[k] - x[N-k]) sin) + (-1)^n x[N/2]:
//
// sums in the place of the doublings. Some lengths take the one way, the others the other.
#pragma once

#include <vector>

#include "realdft/forward.h"
#include "realdft/inverse.h"

namespace orvgen::hartley {

// Whether a length runs the flow of the forward real transform, with another last layer.
bool runsForwardFlow(int n);

// The arrangement of the inverse real transform that the other lengths run.
realdft::Arrangement arrangement(int n);

// One line: how this length is computed.
std::string method(int n);

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
    const flows::DirectPairs pairs(n);
    const flows::PairSums<V> sums(pairs.u, x);
    std::vector<V> h(x.size());
    h[0] = flows::sumOf(sums.a) + x[0];
    for (std::size_t k = 1; 2 * k < x.size(); ++k) {
        const auto bin = static_cast<long>(k);
        const V c = narrow(flows::cosineSum(pairs, n, bin, x[0], sums.a));
        const V s = narrow(flows::sineSum(pairs, n, bin, sums.d));
        h[k] = c + s;
        h[x.size() - k] = c - s;
    }
    return h;
}

// Lengths whose last layer is written out here.
inline bool hasOwnLastLayer(int n) { return n == 5 || n == 7 || n == 8 || n == 11; }

template <class V>
std::vector<V> throughForward(int n, const std::vector<V>& x, kernelgen::Graph* graph) {
    if (hasOwnLastLayer(n)) return n == 8 ? eightPoints(x) : directPoints(n, x);
    const flows::Bins<V> bins = realdft::forwardBins(n, x, graph);
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
    flows::Bins<V> bins;
    bins.push_back({x[0], {}});
    for (std::size_t k = 1; 2 * k < x.size(); ++k) {
        const V &a = x[k], &b = x[x.size() - k];
        bins.push_back({a + b, b - a});
    }
    if (n % 2 == 0) bins.push_back({x[x.size() / 2], {}});
    return realdft::inverseSamples(arrangement(n), bins, graph);
}

// Not scaled yet; no value carries a minus, and all are binary32 where the samples are.
template <class V>
std::vector<V> transform(int n, const std::vector<V>& x, kernelgen::Graph* graph = nullptr) {
    const std::vector<V> h =
        runsForwardFlow(n) ? throughForward(n, x, graph) : throughInverse(n, x, graph);
    for (const V& v : h)
        if (v.negative()) throw std::logic_error("a Hartley output with a minus");
    return h;
}

kernelgen::Graph hartleyGraph(int n, kernelgen::Arithmetic arithmetic);

}  // namespace orvgen::hartley
