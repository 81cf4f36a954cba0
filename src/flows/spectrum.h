// SPDX-License-Identifier: MIT
// Numbers by index, and which bins of a transform are kept.
//
// A real number has no imaginary part at all (it is empty). The bins of real samples are kept up
// to the middle; the others are their conjugates.
#pragma once

#include <vector>

#include "expression.h"
#include "plan/index_maps.h"
#include "plan/plan.h"

namespace orvgen::flows {

using plan::modulo;
using plan::Transform;

template <class V>
using Bin = Complex<Expression<V>>;
// Samples or bins.
template <class V>
using Sequence = std::vector<Bin<V>>;

// Bins 0 .. count - 1 are kept of a transform of n points.
inline long keptBins(Transform transform, long n) {
    switch (transform) {
        case Transform::Real:
        case Transform::InverseReal:
            return n / 2 + 1;
        case Transform::Odd:
        case Transform::InverseOdd:
            return (n + 1) / 2;
        default:
            return n;
    }
}

// The bin that is the conjugate of bin k. Bin k of the odd frequencies is frequency 2k + 1 of
// period 2n.
inline long conjugateBin(Transform transform, long n, long k) {
    const bool isOdd = transform == Transform::Odd || transform == Transform::InverseOdd;
    return modulo(isOdd ? n - 1 - k : n - k, n);
}

// Any bin, out of those that are kept.
template <class V>
Bin<V> binAt(Transform transform, const Sequence<V>& bins, long n, long k) {
    k = modulo(k, n);
    return k < keptBins(transform, n) ? bins[k] : conj(bins[conjugateBin(transform, n, k)]);
}

template <class V>
void setBin(Transform transform, Sequence<V>& bins, long n, long k, const Bin<V>& z) {
    k = modulo(k, n);
    if (k < keptBins(transform, n))
        bins[k] = z;
    else
        bins[conjugateBin(transform, n, k)] = conj(z);
}

template <class V>
Bin<V> realNumber(const Expression<V>& x) {
    return {x, {}};
}

template <class V>
Sequence<V> realNumbers(const std::vector<V>& x) {
    Sequence<V> numbers;
    for (const V& v : x) numbers.push_back(realNumber<V>(v));
    return numbers;
}

}  // namespace orvgen::flows
