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

template <class V>
Bins<V> raderReal(Flow<V>& flow, const Plan& plan, long e, const std::vector<V>& x) {
    const int p = plan.length;
    const int cycle = p - 1;
    const int m = cycle / 2;
    const long g = smallestRoot(p);
    const RaderConstants k(p, e);

    flow.stage("transform of the cycle of length " + std::to_string(cycle));
    std::vector<V> samples;
    for (int q = 0; q < cycle; ++q)
        samples.push_back(x[static_cast<std::size_t>(powerModulo(g, q, p))]);
    Bins<V> a;
    {
        const typename Flow<V>::Scope scope(flow, "cycle");
        a = flow.real(plan.parts[0], 1, samples);
    }

    flow.stage("pointwise products");
    const auto last = static_cast<std::size_t>(m);
    const V x0 = narrow(x[0]);
    const V sum = narrow(a[0].re);
    Bins<V> even(binCount(m));  // frequencies 0, 2, 4, ..
    Bins<V> odd(oddBinCount(m));
    const auto z = [&](std::size_t i) -> Bin<V>& { return i % 2 == 0 ? even[i / 2] : odd[i / 2]; };
    z(0) = {x0 + k.re[0] * sum, {}};
    for (std::size_t i = 1; i < last; ++i) {
        const V u = narrow(a[i].re);
        const V v = narrow(a[i].im);
        z(i) = {Expression<V>::ofProducts(k.re[i], u, k.im[i], v),
                Expression<V>::ofProducts(k.im[i], u, -k.re[i], v)};
    }
    z(last) = {k.re[last] * narrow(a[last].re), {}};

    std::vector<V> re, im;
    flow.stage("real parts: the even frequencies of the cycle");
    {
        const typename Flow<V>::Scope scope(flow, "even");
        re = flow.inverseReal(plan.parts[1], 1, even);
    }
    flow.stage("imaginary parts: the odd frequencies of the cycle");
    {
        const typename Flow<V>::Scope scope(flow, "odd");
        im = flow.inverseOdd(plan.parts[2], odd);
    }
    Bins<V> half(binCount(p));
    half[0] = {sum + x0, {}};
    for (int r = 0; r < m; ++r) {
        const auto i = static_cast<std::size_t>(r);
        setBin(half, p, powerModulo(g, r, p), {re[i], im[i]});
    }
    return half;
}

// The mirror: the real parts of the bins, in the order of the powers of 1/g, make the even
// frequencies of the cycle, the imaginary parts the odd ones; one inverse transform of length L, or
// two of half the length, gives the samples.
template <class V>
std::vector<V> raderInverseReal(Flow<V>& flow, const Plan& plan, long e, const Bins<V>& z) {
    const int p = plan.length;
    const int cycle = p - 1;
    const int m = cycle / 2;
    const long g = smallestRoot(p);
    const long inverse = inverseModulo(g, p);
    const RaderConstants k(p, e);

    flow.stage("even and odd frequencies of the cycle of length " + std::to_string(cycle));
    std::vector<V> re;
    Samples<V> im;
    for (int q = 0; q < m; ++q) {
        const Bin<V> bin = binAt(z, p, powerModulo(inverse, q, p));
        re.push_back(bin.re.formed());
        im.push_back(bin.im);
    }
    Bins<V> even, odd;
    {
        const typename Flow<V>::Scope scope(flow, "even");
        even = flow.real(plan.parts[0], 1, re);
    }
    {
        const typename Flow<V>::Scope scope(flow, "odd");
        odd = flow.odd(plan.parts[1], im);
    }

    flow.stage("pointwise products");
    const auto last = static_cast<std::size_t>(m);
    const auto a = [&](std::size_t i) -> const Bin<V>& {
        return i % 2 == 0 ? even[i / 2] : odd[i / 2];
    };
    const V sum = narrow(a(0).re);
    Bins<V> product(last + 1);
    product[0] = {flow.operand(z[0].re) + k.re[0] * sum, {}};
    for (std::size_t i = 1; i < last; ++i) {
        const V u = narrow(a(i).re);
        const V v = narrow(a(i).im);
        product[i] = {Expression<V>::ofProducts(k.re[i], u, -k.im[i], v),
                      Expression<V>::ofProducts(k.im[i], u, k.re[i], v)};
    }
    product[last] = {k.re[last] * narrow(a(last).re), {}};

    flow.stage("inverse transform of the cycle");
    std::vector<V> x(static_cast<std::size_t>(p));
    x[0] = sum + narrow(z[0].re);
    const auto place = [&](int r) { return static_cast<std::size_t>(powerModulo(g, r, p)); };
    if (!plan.isSplit()) {
        const typename Flow<V>::Scope scope(flow, "cycle");
        const std::vector<V> y = flow.inverseReal(plan.parts[2], 1, product);
        for (int r = 0; r < cycle; ++r) x[place(r)] = y[static_cast<std::size_t>(r)];
        return x;
    }
    Bins<V> evenProduct, oddProduct;
    for (std::size_t i = 0; i <= last; ++i)
        (i % 2 == 0 ? evenProduct : oddProduct).push_back(product[i]);
    std::vector<V> ye, yo;
    {
        const typename Flow<V>::Scope scope(flow, "cycle-even");
        ye = flow.inverseReal(plan.parts[2], 1, evenProduct);
    }
    {
        const typename Flow<V>::Scope scope(flow, "cycle-odd");
        yo = flow.inverseOdd(plan.parts[3], oddProduct);
    }
    for (int r = 0; r < m; ++r) {
        const V s = narrow(ye[static_cast<std::size_t>(r)]);
        const V d = narrow(yo[static_cast<std::size_t>(r)]);
        x[place(r)] = s + d;
        x[place(r + m)] = s - d;
    }
    return x;
}

}  // namespace orvgen::flows
