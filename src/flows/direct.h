// SPDX-License-Identifier: MIT
// Direct blocks: lengths 1 to 4, and the symmetric form of the odd primes 5, 7, 11.
//
// Forward, with the pairs a = x[u] + x[n-u], d = x[u] - x[n-u]:
//   X[k] = (x[0] + sum of cos(2 pi e u k/n) a, - sum of sin(2 pi e u k/n) d).
// Inverse, by the same sums over the real and the imaginary parts of the bins:
//   y[q], y[n-q] = C -+ S.
#pragma once

#include "flow.h"
#include "sums.h"

namespace orvgen::flows {

inline Constant sineOf60() { return kernelgen::sinTurn(1, 6); }
inline Constant half() { return kernelgen::ratio(1, 2); }

// The length of a block that the switches before leave over.
inline void expectSymmetricForm(long n) {
    if (n != 5 && n != 7 && n != 11) throw std::logic_error("no direct block of this length");
}

template <class V>
Sequence<V> directReal(Flow<V>& flow, long n, const plan::Block& choices, long e,
                       const Sequence<V>& samples) {
    e = modulo(e, n);
    const auto x = [&](long t) { return narrow(samples[t].re); };
    const bool bothOpen = choices.unrounded == Unrounded::Both;
    const auto head = [&] { return operand(samples[0].re, choices.unrounded == Unrounded::Head); };
    switch (n) {
        case 1:
            return samples;
        case 2: {
            const V x0 = operand(samples[0].re, bothOpen);
            const V x1 = operand(samples[1].re, bothOpen);
            return {{x0 + x1, {}}, {x0 - x1, {}}};
        }
        case 3: {
            const V x1 = x(1), x2 = x(2);
            const V a = x1 + x2;
            const V d = x1 - x2;
            const V sine = sineOf60() * d;
            return {{x(0) + a, {}}, {head() - half() * a, e == 1 ? -sine : sine}};
        }
        case 4: {
            const V x0 = x(0), x1 = x(1), x2 = x(2), x3 = x(3);
            const V a = x0 + x2;
            const V c = x0 - x2;
            const V b = x1 + x3;
            const V d = x1 - x3;
            return {{a + b, {}}, {c, e == 1 ? -d : d}, {a - b, {}}};
        }
        default:
            expectSymmetricForm(n);
    }
    const DirectSums sums(n, choices.sums.value_or(flow.sums()));
    std::vector<V> a, d;
    for (std::size_t i = 0; i < sums.sinePairs.size(); ++i) {
        const V first = x(sums.cosinePairs[i]), second = x(n - sums.cosinePairs[i]);
        a.push_back(first + second);
        const V plus = x(sums.sinePairs[i]), minus = x(n - sums.sinePairs[i]);
        d.push_back(plus - minus);
    }
    const V x0 = x(0);
    Sequence<V> half{{sumOf(a) + x0, {}}};
    for (long k = 1; k <= n / 2; ++k)
        half.push_back({sums.cosineSum(e * k, head(), a), sums.sineSum(-e * k, d)});
    return half;
}

template <class V>
Sequence<V> directInverseReal(Flow<V>& flow, long n, const plan::Block& choices, long e,
                              const Sequence<V>& z) {
    e = modulo(e, n);
    const auto head = [&] { return operand(z[0].re, choices.unrounded == Unrounded::Head); };
    switch (n) {
        case 1:
            return realNumbers<V>({z[0].re.formed()});
        case 2: {
            const bool bothOpen = choices.unrounded == Unrounded::Both;
            const V z0 = operand(z[0].re, bothOpen);
            const V z1 = operand(z[1].re, bothOpen);
            return realNumbers<V>({z0 + z1, z0 - z1});
        }
        case 3: {
            const bool partOpen = choices.unrounded == Unrounded::RealPart;
            const V u = narrow(z[1].re);
            const V centre = narrow(head() - half() * operand(z[1].re, partOpen));
            const V sine = narrow(product(sineOf60(), e == 1 ? z[1].im : -z[1].im));
            return realNumbers<V>({narrow(z[0].re) + u, centre - sine, centre + sine});
        }
        case 4: {
            const V z0 = narrow(z[0].re), z2 = narrow(z[2].re);
            const V re = narrow(z[1].re);
            const V im = e == 1 ? narrow(z[1].im) : -narrow(z[1].im);
            const V s = z0 + z2;
            const V d = z0 - z2;
            return realNumbers<V>({s + re, d - im, s - re, d + im});
        }
        default:
            expectSymmetricForm(n);
    }
    const DirectSums sums(n, choices.sums.value_or(flow.sums()));
    std::vector<V> a, d;
    for (const long u : sums.cosinePairs)
        a.push_back(narrow(binAt(Transform::InverseReal, z, n, u).re));
    for (const long u : sums.sinePairs)
        d.push_back(narrow(binAt(Transform::InverseReal, z, n, u).im));
    const V z0 = narrow(z[0].re);
    std::vector<V> y(n);
    y[0] = sumOf(a) + z0;
    for (long q = 1; q <= n / 2; ++q) {
        const V c = narrow(sums.cosineSum(e * q, head(), a));
        const V s = narrow(sums.sineSum(e * q, d));
        y[q] = c - s;
        y[n - q] = c + s;
    }
    return realNumbers(y);
}

}  // namespace orvgen::flows
