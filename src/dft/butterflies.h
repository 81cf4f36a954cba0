// SPDX-License-Identifier: MIT
// The butterflies of lengths 2, 3, 4, 5, 7 and 11, forward and inverse.
//
// z[n] are the inputs and y[k] = sum of z[n] exp(-+ 2 pi i n k / N) the outputs. The directions
// differ only in the turn by a quarter of the odd part at the end: times -i forward, i inverse.
//
// Z is a complex number in any of the forms that have +, -, a product by a constant, and
// turnedSum(), see below: Complex<V> on scalars or on lanes, or a packed pair (packed.h).
#pragma once

#include <stdexcept>
#include <vector>

#include "flows/direction.h"
#include "kernelgen/constant.h"
#include "kernelgen/value.h"

namespace orvgen::dft {

using flows::Direction;
using kernelgen::Complex;
using kernelgen::Constant;

template <class V>
Complex<V> operator*(const Constant& c, const Complex<V>& z) {
    return {c * z.re, c * z.im};
}

// Times -i forward, times i inverse: an exchange and a sign, no operation.
template <class Z>
Z turned(Direction direction, const Z& z) {
    return direction == Direction::Forward ? timesMinusI(z) : timesI(z);
}

// The sum of the products, in their order, and then turned.
template <class V>
Complex<V> turnedSum(Direction direction, const std::vector<Constant>& c,
                     const std::vector<Complex<V>>& d) {
    Complex<V> sum = c[0] * d[0];
    for (std::size_t j = 1; j < d.size(); ++j) sum = sum + c[j] * d[j];
    return turned(direction, narrow(sum));
}

inline Constant half() { return kernelgen::ratio(1, 2); }
inline Constant sineOf60() { return kernelgen::sinTurn(1, 6); }

// 4 additions
template <class Z>
std::vector<Z> two(const std::vector<Z>& z) {
    return {z[0] + z[1], z[0] - z[1]};
}

// 12 additions, 4 multiplications
template <class Z>
std::vector<Z> three(Direction direction, const std::vector<Z>& z) {
    const Z t = z[1] + z[2];
    const Z d = z[1] - z[2];
    const Z y0 = z[0] + t;
    const Z m = narrow(z[0] - half() * t);
    const Z p = turnedSum(direction, {sineOf60()}, std::vector<Z>{d});
    return {y0, m + p, m - p};
}

// 16 additions
template <class Z>
std::vector<Z> four(Direction direction, const std::vector<Z>& z) {
    const Z a = z[0] + z[2];
    const Z b = z[1] + z[3];
    const Z c = z[0] - z[2];
    const Z d = turned(direction, z[1] - z[3]);
    return {a + b, c + d, a - b, c - d};
}

// Where y[0] of the five-point butterfly takes z[0]: as its first term or as its last one.
enum class Centre { First, Last };

// 32 additions, 16 multiplications. The second pair is taken from 3 to 2.
template <class Z>
std::vector<Z> five(Direction direction, const std::vector<Z>& z, Centre centre = Centre::Last) {
    const Constant c1 = kernelgen::cosTurn(1, 5);
    const Constant c2 = -kernelgen::cosTurn(2, 5);
    const Constant sin1 = kernelgen::sinTurn(1, 5);
    const Constant sin2 = kernelgen::sinTurn(2, 5);
    const Z s1 = z[1] + z[4], d1 = z[1] - z[4];
    const Z s2 = z[3] + z[2], d2 = z[3] - z[2];
    const Z y0 = centre == Centre::First ? (z[0] + s1) + s2 : (s1 + s2) + z[0];
    const Z a1 = narrow((c1 * s1 + z[0]) - c2 * s2);
    const Z a2 = narrow((z[0] - c2 * s1) + c1 * s2);
    const Z p1 = turnedSum(direction, {sin1, -sin2}, std::vector<Z>{d1, d2});
    const Z p2 = turnedSum(direction, {sin2, sin1}, std::vector<Z>{d1, d2});
    return {y0, a1 + p1, a2 + p2, a2 - p2, a1 - p1};
}

// The order of a sum of products whose terms the direct form takes one at a time: the first
// positive term, then the others as they come; without a positive term as they come.
inline std::vector<std::size_t> firstPositiveFirst(const std::vector<Constant>& c) {
    std::size_t first = 0;
    while (first < c.size() && c[first].isNegative()) ++first;
    if (first == c.size()) first = 0;
    std::vector<std::size_t> order{first};
    for (std::size_t j = 0; j < c.size(); ++j)
        if (j != first) order.push_back(j);
    return order;
}

template <class V>
V sumOfProducts(const std::vector<Constant>& c, const std::vector<V>& v) {
    const std::vector<std::size_t> order = firstPositiveFirst(c);
    V sum = c[order[0]] * v[order[0]];
    for (std::size_t i = 1; i < order.size(); ++i) sum = sum + c[order[i]] * v[order[i]];
    return sum;
}

// The sum of the products, turned, each part of the result summed for itself in the order of its
// own signs.
template <class V>
Complex<V> turnedDirectSum(Direction direction, const std::vector<Constant>& c,
                           const std::vector<Complex<V>>& d) {
    const bool forward = direction == Direction::Forward;
    std::vector<Constant> opposite;
    std::vector<V> re, im;
    for (std::size_t j = 0; j < c.size(); ++j) {
        opposite.push_back(-c[j]);
        re.push_back(d[j].re);
        im.push_back(d[j].im);
    }
    return {sumOfProducts(forward ? c : opposite, im), sumOfProducts(forward ? opposite : c, re)};
}

// The direct symmetric form of an odd prime p = 2 h + 1: 4 h h multiplications.
template <class Z>
std::vector<Z> direct(Direction direction, const std::vector<Z>& z) {
    const std::size_t p = z.size();
    const std::size_t h = (p - 1) / 2;
    std::vector<Z> s, d;
    for (std::size_t j = 1; j <= h; ++j) {
        s.push_back(z[j] + z[p - j]);
        d.push_back(z[j] - z[p - j]);
    }
    Z sum = s[0];
    for (std::size_t j = 1; j < h; ++j) sum = sum + s[j];
    std::vector<Z> y(p);
    y[0] = sum + z[0];
    for (std::size_t k = 1; k <= h; ++k) {
        Z a = z[0];
        std::vector<Constant> sines;
        for (std::size_t j = 1; j <= h; ++j) {
            const auto jk = static_cast<long>(j * k);
            a = a + kernelgen::cosTurn(jk, static_cast<long>(p)) * s[j - 1];
            sines.push_back(kernelgen::sinTurn(jk, static_cast<long>(p)));
        }
        const Z b = turnedDirectSum(direction, sines, d);
        y[k] = a + b;
        y[p - k] = a - b;
    }
    return y;
}

template <class Z>
std::vector<Z> butterfly(Direction direction, const std::vector<Z>& z) {
    switch (z.size()) {
        case 1:
            return z;
        case 2:
            return two(z);
        case 3:
            return three(direction, z);
        case 4:
            return four(direction, z);
        case 5:
            return five(direction, z);
        case 7:
        case 11:
            return direct(direction, z);
        default:
            throw std::logic_error("no butterfly of this length");
    }
}

}  // namespace orvgen::dft
