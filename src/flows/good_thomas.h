// Good-Thomas joins: n = ab with coprime factors, a-point blocks first, no twiddles.
//
// Samples t = b t1 + a t2 and bins k = b k1 + a k2, both modulo n, so that
//   w(n)^(e t k) = w(a)^(e b t1 k1) w(b)^(e a t2 k2):
// the blocks are transforms with the root exponents e b and e a.
//
// I. J. Good, The interaction algorithm and practical Fourier analysis, J. R. Statist. Soc. B,
// 1958.
#pragma once

#include "flow.h"

namespace orvgen::flows {

inline std::size_t at(long k, long n) { return static_cast<std::size_t>(modulo(k, n)); }

template <class V>
Bins<V> goodThomasReal(Flow<V>& flow, const Plan& plan, long e, const std::vector<V>& x) {
    const int n = plan.length;
    const int a = plan.parts[0]->length;
    const int b = plan.parts[1]->length;
    flow.stage(std::to_string(a) + "-point blocks");
    std::vector<Bins<V>> u;  // by t2
    for (int t2 = 0; t2 < b; ++t2) {
        std::vector<V> row;
        for (int t1 = 0; t1 < a; ++t1) row.push_back(x[at(b * t1 + a * t2, n)]);
        const typename Flow<V>::Scope scope(flow, "first" + std::to_string(t2));
        u.push_back(flow.real(plan.parts[0], e * b, row));
    }
    flow.stage(std::to_string(b) + "-point blocks");
    Bins<V> half(binCount(n));
    for (int k1 = 0; 2 * k1 <= a; ++k1) {
        const typename Flow<V>::Scope scope(flow, "second" + std::to_string(k1));
        const auto row = static_cast<std::size_t>(k1);
        if (k1 == 0 || 2 * k1 == a) {
            std::vector<V> across;
            for (const Bins<V>& bins : u) across.push_back(bins[row].re.formed());
            const Bins<V> y = flow.real(plan.parts[1], e * a, across);
            for (int k2 = 0; 2 * k2 <= b; ++k2)
                setBin(half, n, b * k1 + a * k2, y[static_cast<std::size_t>(k2)]);
        } else {
            Bins<V> across;
            for (const Bins<V>& bins : u) across.push_back(bins[row]);
            const Bins<V> y = flow.complex(plan.parts[1], plan.complexParts[1], e * a, across);
            for (int k2 = 0; k2 < b; ++k2)
                setBin(half, n, b * k1 + a * k2, y[static_cast<std::size_t>(k2)]);
        }
    }
    return half;
}

template <class V>
std::vector<V> goodThomasInverseReal(Flow<V>& flow, const Plan& plan, long e, const Bins<V>& z) {
    const int n = plan.length;
    const int a = plan.parts[0]->length;
    const int b = plan.parts[1]->length;
    flow.stage(std::to_string(a) + "-point blocks");
    std::vector<Bins<V>> u(static_cast<std::size_t>(a));  // by t1, half spectra over k2
    for (int k2 = 0; 2 * k2 <= b; ++k2) {
        const typename Flow<V>::Scope scope(flow, "first" + std::to_string(k2));
        if (k2 == 0 || 2 * k2 == b) {
            Bins<V> row;
            for (int k1 = 0; 2 * k1 <= a; ++k1) row.push_back(binAt(z, n, b * k1 + a * k2));
            const std::vector<V> y = flow.inverseReal(plan.parts[0], e * b, row);
            for (std::size_t t1 = 0; t1 < u.size(); ++t1) u[t1].push_back({y[t1], {}});
        } else {
            Bins<V> row;
            for (int k1 = 0; k1 < a; ++k1) row.push_back(binAt(z, n, b * k1 + a * k2));
            const Bins<V> y = flow.inverseComplex(plan.parts[0], plan.complexParts[0], e * b, row);
            for (std::size_t t1 = 0; t1 < u.size(); ++t1) u[t1].push_back(y[t1]);
        }
    }
    flow.stage(std::to_string(b) + "-point blocks");
    std::vector<V> x(static_cast<std::size_t>(n));
    for (int t1 = 0; t1 < a; ++t1) {
        const typename Flow<V>::Scope scope(flow, "second" + std::to_string(t1));
        const std::vector<V> y =
            flow.inverseReal(plan.parts[1], e * a, u[static_cast<std::size_t>(t1)]);
        for (int t2 = 0; t2 < b; ++t2) x[at(b * t1 + a * t2, n)] = y[static_cast<std::size_t>(t2)];
    }
    return x;
}

template <class V>
Bins<V> goodThomasComplex(Flow<V>& flow, const Plan& plan, long e, const Bins<V>& z) {
    const int n = plan.length;
    const int a = plan.parts[0]->length;
    const int b = plan.parts[1]->length;
    std::vector<Bins<V>> u;  // by t2
    for (int t2 = 0; t2 < b; ++t2) {
        Bins<V> row;
        for (int t1 = 0; t1 < a; ++t1) row.push_back(z[at(b * t1 + a * t2, n)]);
        const typename Flow<V>::Scope scope(flow, "first" + std::to_string(t2));
        u.push_back(flow.complex(plan.parts[0], plan.complexParts[0], e * b, row));
    }
    Bins<V> y(static_cast<std::size_t>(n));
    for (int k1 = 0; k1 < a; ++k1) {
        Bins<V> across;
        for (const Bins<V>& bins : u) across.push_back(bins[static_cast<std::size_t>(k1)]);
        const typename Flow<V>::Scope scope(flow, "second" + std::to_string(k1));
        const Bins<V> v = flow.complex(plan.parts[1], plan.complexParts[1], e * a, across);
        for (int k2 = 0; k2 < b; ++k2) y[at(b * k1 + a * k2, n)] = v[static_cast<std::size_t>(k2)];
    }
    return y;
}

// Odd frequencies of length n = 2q, q odd: over the period 4q of the odd frequencies the samples
// stand at q t1 + 4 t2 (beyond n with a minus), and the frequencies f = 1 modulo 4 give one complex
// transform of length q, f modulo q being its bin; the others are the conjugates.
template <class V>
Bins<V> goodThomasOdd(Flow<V>& flow, const Plan& plan, const Samples<V>& x) {
    const int n = plan.length;
    const int q = plan.parts[1]->length;
    if (plan.parts[0]->length != 2 || q % 2 == 0)
        throw std::logic_error("odd frequencies without twiddles take 2 and an odd factor");
    const auto sample = [&](long t) {
        t = modulo(t, 2 * n);
        return t < n ? x[static_cast<std::size_t>(t)] : -x[static_cast<std::size_t>(t - n)];
    };
    Bins<V> across;
    for (long t2 = 0; t2 < q; ++t2) across.push_back({sample(4 * t2), -sample(q + 4 * t2)});
    const typename Flow<V>::Scope scope(flow, "second");
    const Bins<V> y = flow.complex(plan.parts[1], plan.complexParts[1], 1, across);
    Bins<V> half(oddBinCount(n));
    for (long f = 1; f < 2 * n; f += 4) setOddBin(half, n, f, y[at(f, q)]);
    return half;
}

template <class V>
std::vector<V> goodThomasInverseOdd(Flow<V>& flow, const Plan& plan, const Bins<V>& z) {
    const int n = plan.length;
    const int q = plan.parts[1]->length;
    if (plan.parts[0]->length != 2 || q % 2 == 0)
        throw std::logic_error("odd frequencies without twiddles take 2 and an odd factor");
    Bins<V> row(static_cast<std::size_t>(q));
    for (long f = 1; f < 2 * n; f += 4) row[at(f, q)] = oddBinAt(z, n, f);
    const typename Flow<V>::Scope scope(flow, "first");
    const Bins<V> y = flow.inverseComplex(plan.parts[1], plan.complexParts[1], 1, row);
    std::vector<V> x(static_cast<std::size_t>(n));
    const auto setSample = [&](long t, const V& v) {
        t = modulo(t, 2 * n);
        x[static_cast<std::size_t>(t < n ? t : t - n)] = t < n ? v : -v;
    };
    for (long t2 = 0; t2 < q; ++t2) {
        const Bin<V>& v = y[static_cast<std::size_t>(t2)];
        setSample(4 * t2, v.re.formed());
        setSample(q + 4 * t2, -v.im.formed());
    }
    return x;
}

}  // namespace orvgen::flows
