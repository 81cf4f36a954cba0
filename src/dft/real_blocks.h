// SPDX-License-Identifier: MIT
// Blocks of transforms with real coefficients, on values: the real-lane form runs them on the real
// parts and on the imaginary parts of complex data alike.
//
// R blocks: X[k] = sum of x[n] exp(-2 pi i n k / N) of real x. H blocks: y[n] = c0 + sum over the
// pairs k of Re(z[k] exp(2 pi i n k / N)), where the caller doubled z[k] for its conjugate.
#pragma once

#include "butterflies.h"

namespace orvgen::dft {

// Bins 0 .. L/2 of a real transform of even length L; the bins beyond are conjugates. Bins 0 and
// L/2 are real, their imaginary parts are empty.
template <class V>
class HalfSpectrum {
  public:
    explicit HalfSpectrum(std::size_t length) : length_(length), bins_(length / 2 + 1) {}

    Complex<V> at(std::size_t k) const {
        k %= length_;
        return 2 * k <= length_ ? bins_[k] : conj(bins_[length_ - k]);
    }
    const V& real(std::size_t k) const { return bins_[k].re; }
    void set(std::size_t k, const Complex<V>& z) {
        k %= length_;
        if (2 * k <= length_)
            bins_[k] = z;
        else
            bins_[length_ - k] = conj(z);
    }
    void set(std::size_t k, const V& real) { bins_[k].re = real; }
    std::size_t length() const { return length_; }

  private:
    std::size_t length_;
    std::vector<Complex<V>> bins_;
};

// X[1] = m - i sin(pi/3) d. 4 additions, 1 multiplication.
template <class V>
struct Real3 {
    V y0, m, d;
    Real3(const V& x0, const V& x1, const V& x2) {
        const V t = x1 + x2;
        d = x1 - x2;
        y0 = x0 + t;
        m = x0 - half() * t;
    }
    Complex<V> y1() const { return {m, -(sineOf60() * d)}; }
    Complex<V> y2() const { return {m, sineOf60() * d}; }
};

// X[1] = c - i d. 6 additions.
template <class V>
struct Real4 {
    V y0, y2, c, d;
    Real4(const V& x0, const V& x1, const V& x2, const V& x3) {
        const V a = x0 + x2;
        const V b = x1 + x3;
        c = x0 - x2;
        d = x1 - x3;
        y0 = a + b;
        y2 = a - b;
    }
    Complex<V> y1() const { return {c, -d}; }
};

// Bins 0, 1, 2. 12 additions, 8 multiplications.
template <class V>
std::vector<Complex<V>> real5(const std::vector<V>& x) {
    const Constant c1 = kernelgen::cosTurn(1, 5), c2 = -kernelgen::cosTurn(2, 5);
    const Constant sin1 = kernelgen::sinTurn(1, 5), sin2 = kernelgen::sinTurn(2, 5);
    const V s1 = x[1] + x[4], d1 = x[1] - x[4];
    const V s2 = x[3] + x[2], d2 = x[3] - x[2];
    return {{(s1 + s2) + x[0], {}},
            {(c1 * s1 + x[0]) - c2 * s2, -(sin1 * d1 - sin2 * d2)},
            {(x[0] - c2 * s1) + c1 * s2, -(sin2 * d1 + sin1 * d2)}};
}

// Bins 0 .. h of an odd prime p = 2 h + 1, direct.
template <class V>
std::vector<Complex<V>> realDirect(const std::vector<V>& x) {
    const std::size_t p = x.size();
    const std::size_t h = (p - 1) / 2;
    std::vector<V> s, d;
    for (std::size_t j = 1; j <= h; ++j) {
        s.push_back(x[j] + x[p - j]);
        d.push_back(x[j] - x[p - j]);
    }
    V sum = s[0];
    for (std::size_t j = 1; j < h; ++j) sum = sum + s[j];
    std::vector<Complex<V>> y{{sum + x[0], {}}};
    for (std::size_t k = 1; k <= h; ++k) {
        V a = x[0];
        std::vector<Constant> sines;
        for (std::size_t j = 1; j <= h; ++j) {
            const auto jk = static_cast<long>(j * k);
            a = a + kernelgen::cosTurn(jk, static_cast<long>(p)) * s[j - 1];
            sines.push_back(kernelgen::sinTurn(jk, static_cast<long>(p)));
        }
        y.push_back({a, -sumOfProducts(sines, d)});
    }
    return y;
}

// 4 additions, 2 multiplications; `sine` is sin(pi/3) times the imaginary part of the pair.
template <class V>
std::vector<V> hermitian3(const V& c0, const V& re, const V& sine) {
    const V m = c0 - half() * re;
    return {c0 + re, m - sine, m + sine};
}

// 6 additions
template <class V>
std::vector<V> hermitian4(const V& c0, const V& c2, const Complex<V>& z) {
    const V e = c0 + c2;
    const V f = c0 - c2;
    return {e + z.re, f - z.im, e - z.re, f + z.im};
}

// 12 additions, 8 multiplications
template <class V>
std::vector<V> hermitian5(const V& c0, const Complex<V>& z1, const Complex<V>& z2) {
    const Constant c1 = kernelgen::cosTurn(1, 5), c2 = -kernelgen::cosTurn(2, 5);
    const Constant sin1 = kernelgen::sinTurn(1, 5), sin2 = kernelgen::sinTurn(2, 5);
    const V a1 = (c1 * z1.re + c0) - c2 * z2.re;
    const V a2 = (c0 - c2 * z1.re) + c1 * z2.re;
    const V p1 = sin1 * z1.im + sin2 * z2.im;
    const V p2 = sin2 * z1.im - sin1 * z2.im;
    return {(z1.re + z2.re) + c0, a1 - p1, a2 - p2, a2 + p2, a1 + p1};
}

// An odd prime 2 h + 1, direct; the terms of all sums in the given order of the pairs 1 .. h.
template <class V>
std::vector<V> hermitianDirect(const V& c0, const std::vector<Complex<V>>& pairs,
                               const std::vector<std::size_t>& order) {
    const std::size_t h = pairs.size();
    const auto p = static_cast<long>(2 * h + 1);
    std::vector<V> y(2 * h + 1);
    V sum = pairs[order[0] - 1].re;
    for (std::size_t i = 1; i < h; ++i) sum = sum + pairs[order[i] - 1].re;
    y[0] = sum + c0;
    for (std::size_t n = 1; n <= h; ++n) {
        V a = c0;
        V b;
        for (std::size_t i = 0; i < h; ++i) {
            const Complex<V>& z = pairs[order[i] - 1];
            const auto turn = static_cast<long>(order[i] * n);
            a = a + kernelgen::cosTurn(turn, p) * z.re;
            const V term = kernelgen::sinTurn(turn, p) * z.im;
            b = i == 0 ? term : b + term;
        }
        y[n] = a - b;
        y[2 * h + 1 - n] = a + b;
    }
    return y;
}

}  // namespace orvgen::dft
