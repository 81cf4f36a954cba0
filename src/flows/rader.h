// SPDX-License-Identifier: MIT
// Rader's algorithm for the real transform of prime length p, forward and inverse.
//
// The indices 1..p-1 are the powers of a primitive root g. In that order the bins other than X[0]
// are a cyclic correlation of length L = p-1 of the samples with exp(-2 pi i g^r/p). The cosines
// have period L/2 and the sines change sign after L/2, so that the real parts of the bins hold the
// even frequencies of the cycle alone and the imaginary parts the odd ones alone: two inverse
// transforms of half the length finish the work. The constant term x[0] enters at frequency 0.
//
// C. M. Rader, Discrete Fourier transforms when the number of data samples is prime, Proc. IEEE,
// 1968.
#pragma once

#include "flow.h"
#include "number_theory.h"
#include "rader_constants.h"

namespace orvgen::flows {

// Frequencies 0 .. L/2 of a cycle, by parity.
template <class V>
struct CycleHalves {
    Sequence<V> even, odd;

    explicit CycleHalves(long m) : even(m / 2 + 1), odd((m + 1) / 2) {}
    CycleHalves(Sequence<V> evenOnes, Sequence<V> oddOnes)
        : even(std::move(evenOnes)), odd(std::move(oddOnes)) {}

    Bin<V>& operator[](long i) { return i % 2 == 0 ? even[i / 2] : odd[i / 2]; }
    const Bin<V>& operator[](long i) const { return i % 2 == 0 ? even[i / 2] : odd[i / 2]; }
};

template <class V>
Sequence<V> raderReal(Flow<V>& flow, const plan::RealRader& plan, long p, long e,
                      const Sequence<V>& x) {
    const long L = p - 1, m = L / 2;
    const long g = smallestRoot(p);
    const RaderConstants K(p, e);

    flow.stage("transform of the cycle of length " + std::to_string(L));
    Sequence<V> samples;
    for (long q = 0; q < L; ++q) samples.push_back(x[powerModulo(g, q, p)]);
    const Sequence<V> a = flow.run(*plan.cycle, 1, samples);

    flow.stage("pointwise products");
    const V x0 = narrow(x[0].re);
    const V sum = narrow(a[0].re);
    CycleHalves<V> z(m);
    z[0] = {x0 + K.re[0] * sum, {}};
    for (long i = 1; i < m; ++i) {
        const V u = narrow(a[i].re);
        const V v = narrow(a[i].im);
        z[i] = {Expression<V>::ofProducts(K.re[i], u, K.im[i], v),
                Expression<V>::ofProducts(K.im[i], u, -K.re[i], v)};
    }
    z[m] = {K.re[m] * narrow(a[m].re), {}};

    flow.stage("real parts: the even frequencies of the cycle");
    const Sequence<V> re = flow.run(*plan.even, 1, z.even);
    flow.stage("imaginary parts: the odd frequencies of the cycle");
    const Sequence<V> im = flow.run(*plan.odd, 1, z.odd);

    Sequence<V> y(m + 1);
    y[0] = {sum + x0, {}};
    for (long r = 0; r < m; ++r)
        setBin(Transform::Real, y, p, powerModulo(g, r, p), {re[r].re, im[r].re});
    return y;
}

// The mirror: the real parts of the bins, in the order of the powers of 1/g, make the even
// frequencies of the cycle, the imaginary parts the odd ones; one inverse transform of length L, or
// two of half the length, gives the samples.
template <class V>
Sequence<V> raderInverseReal(Flow<V>& flow, const plan::InverseRealRader& plan, long p, long e,
                             const Sequence<V>& z) {
    const long L = p - 1, m = L / 2;
    const long g = smallestRoot(p);
    const RaderConstants K(p, e);

    flow.stage("even and odd frequencies of the cycle of length " + std::to_string(L));
    Sequence<V> re, im;
    for (long q = 0; q < m; ++q) {
        const Bin<V> bin =
            binAt(Transform::InverseReal, z, p, powerModulo(inverseModulo(g, p), q, p));
        re.push_back(realNumber<V>(bin.re.formed()));
        im.push_back(realNumber<V>(bin.im));
    }
    const Sequence<V> even = flow.run(*plan.even, 1, re);
    const Sequence<V> odd = flow.run(*plan.odd, 1, im);
    const CycleHalves<V> a(even, odd);

    flow.stage("pointwise products");
    const V sum = narrow(a[0].re);
    CycleHalves<V> b(m);
    b[0] = {operand(z[0].re, plan.unrounded == Unrounded::Head) + K.re[0] * sum, {}};
    for (long i = 1; i < m; ++i) {
        const V u = narrow(a[i].re);
        const V v = narrow(a[i].im);
        b[i] = {Expression<V>::ofProducts(K.re[i], u, -K.im[i], v),
                Expression<V>::ofProducts(K.im[i], u, K.re[i], v)};
    }
    b[m] = {K.re[m] * narrow(a[m].re), {}};

    flow.stage("inverse transform of the cycle");
    Sequence<V> x(p);
    x[0] = realNumber<V>(sum + narrow(z[0].re));
    const auto place = [&](long r) { return powerModulo(g, r, p); };
    if (plan.cycle) {
        Sequence<V> frequencies;
        for (long i = 0; i <= m; ++i) frequencies.push_back(b[i]);
        const Sequence<V> y = flow.run(*plan.cycle, 1, frequencies);
        for (long r = 0; r < L; ++r) x[place(r)] = y[r];
        return x;
    }
    const Sequence<V> ye = flow.run(*plan.cycleEven, 1, b.even);
    const Sequence<V> yo = flow.run(*plan.cycleOdd, 1, b.odd);
    for (long r = 0; r < m; ++r) {
        const V s = narrow(ye[r].re);
        const V d = narrow(yo[r].re);
        x[place(r)] = realNumber<V>(s + d);
        x[place(r + m)] = realNumber<V>(s - d);
    }
    return x;
}

}  // namespace orvgen::flows
