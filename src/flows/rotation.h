// SPDX-License-Identifier: MIT
// Rotation of a bin by an angle: z exp(2 pi i num/den).
//
// A quarter turn is an exchange and a sign. At 45 degrees the one constant sqrt(1/2) multiplies
// each component once, and sum and difference follow: 2 products. Any other angle takes 4 products
// and 2 sums, as two expressions that the next block forms or merges.
#pragma once

#include "spectrum.h"

namespace orvgen::flows {

template <class V>
Bin<V> quarterTurns(const Bin<V>& z, long quarters) {
    switch (modulo(quarters, 4)) {
        case 1:
            return {-z.im, z.re};
        case 2:
            return {-z.re, -z.im};
        case 3:
            return {z.im, -z.re};
        default:
            return z;
    }
}

template <class V>
Bin<V> rotate(const Bin<V>& z, long num, long den) {
    num = modulo(num, den);
    if (4 * num % den == 0) return quarterTurns(z, 4 * num / den);
    if (8 * num % den == 0) {
        const Constant c = kernelgen::cosTurn(1, 8);
        const V p = narrow(product(c, z.re));
        const V r = narrow(product(c, z.im));
        const auto plus = [&] { return Bin<V>{p - r, r + p}; };   // by 45 degrees
        const auto minus = [&] { return Bin<V>{p + r, r - p}; };  // by -45 degrees
        switch (8 * num / den) {
            case 1:
                return plus();
            case 3:
                return quarterTurns(plus(), 1);
            case 5:
                return quarterTurns(minus(), 3);
            default:
                return minus();
        }
    }
    const V a = narrow(z.re);
    const V b = narrow(z.im);
    const Constant c = kernelgen::cosTurn(num, den);
    const Constant s = kernelgen::sinTurn(num, den);
    return {Expression<V>::ofProducts(c, a, -s, b), Expression<V>::ofProducts(c, b, s, a)};
}

}  // namespace orvgen::flows
