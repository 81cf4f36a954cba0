// SPDX-License-Identifier: MIT
// Transforms that are a real one in other clothes: complex transforms in lanes, odd lengths at the
// odd frequencies, blocks with renumbered samples or bins.
#pragma once

#include "flow.h"

namespace orvgen::flows {

// A real transform of the real parts and one of the imaginary parts: Y[k] = A[k] + i B[k],
// Y[n-k] = conj A[k] + i conj B[k].
template <class V>
Sequence<V> complexByLanes(Flow<V>& flow, const plan::Lanes& lanes, long e, const Sequence<V>& z) {
    const long n = std::ssize(z);
    Sequence<V> re, im;
    for (const Bin<V>& bin : z) {
        re.push_back(realNumber<V>(bin.re.formed()));
        im.push_back(realNumber<V>(bin.im.formed()));
    }
    const Sequence<V> a = flow.run(*lanes.re, e, re);
    const Sequence<V> b = flow.run(*lanes.im, e, im);
    Sequence<V> y(n);
    for (long k = 0; 2 * k <= n; ++k) {
        if (k == 0 || 2 * k == n) {
            y[k] = {a[k].re, b[k].re};
            continue;
        }
        const V ar = narrow(a[k].re), ai = narrow(a[k].im);
        const V br = narrow(b[k].re), bi = narrow(b[k].im);
        y[k] = {ar - bi, ai + br};
        y[n - k] = {ar + bi, br - ai};
    }
    return y;
}

template <class V>
Bin<V> alternated(const Expression<V>& x, std::size_t t) {
    return realNumber<V>(t % 2 == 0 ? x.formed() : -x.formed());
}

// For odd n, (-1)^t turns the odd frequencies into the ordinary ones: X[(n-1)/2 - j] is the
// conjugate of bin j of the samples with alternating signs. Signs cost nothing.
template <class V>
Sequence<V> alternatingOdd(Flow<V>& flow, const Plan& real, const Sequence<V>& x) {
    Sequence<V> alternating;
    for (std::size_t t = 0; t < x.size(); ++t) alternating.push_back(alternated(x[t].re, t));
    const Sequence<V> bins = flow.run(real, 1, alternating);
    Sequence<V> half;
    for (std::size_t j = bins.size(); j-- > 0;) half.push_back(conj(bins[j]));
    return half;
}

template <class V>
Sequence<V> alternatingInverseOdd(Flow<V>& flow, const Plan& inverseReal, const Sequence<V>& z) {
    Sequence<V> bins;
    for (std::size_t j = z.size(); j-- > 0;) bins.push_back(conj(z[j]));
    Sequence<V> y = flow.run(inverseReal, 1, bins);
    for (std::size_t t = 0; t < y.size(); ++t) y[t] = alternated(y[t].re, t);
    return y;
}

// A block with the root exponent e as one with exponent 1.
template <class V>
Sequence<V> renumbered(Flow<V>& flow, const plan::Renumbered& block, long e, const Sequence<V>& x) {
    const long n = std::ssize(x);
    if (modulo(e, n) == 1) throw std::logic_error("a block is renumbered that has the exponent 1");
    if (block.what == plan::Renumbered::What::Samples) {
        Sequence<V> samples(n);
        for (long t = 0; t < n; ++t) samples[modulo(e * t, n)] = x[t];
        return flow.run(*block.plan, 1, samples);
    }
    const Sequence<V> bins = flow.run(*block.plan, 1, x);
    Sequence<V> half;
    for (long k = 0; 2 * k <= n; ++k) half.push_back(binAt(Transform::Real, bins, n, e * k));
    return half;
}

// A transform at odd frequencies has the root exponent 1 but for the row of a join with another
// exponent: there bin k is the bin of frequency e (2k+1).
template <class V>
Sequence<V> oddBinsBy(long e, long n, const Sequence<V>& bins) {
    Sequence<V> half;
    for (long k = 0; k < keptBins(Transform::Odd, n); ++k)
        half.push_back(binAt(Transform::Odd, bins, n, (e * (2 * k + 1) - 1) / 2));
    return half;
}
template <class V>
Sequence<V> oddBinsFrom(long e, long n, const Sequence<V>& bins) {
    Sequence<V> half(bins.size());
    for (long k = 0; k < keptBins(Transform::Odd, n); ++k)
        setBin(Transform::Odd, half, n, (e * (2 * k + 1) - 1) / 2, bins[k]);
    return half;
}

}  // namespace orvgen::flows
