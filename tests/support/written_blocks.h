// SPDX-License-Identifier: MIT
// The blocks and joins of the complex binary32 kernels on plain floats, written from their
// formulas. They share nothing with the flows: what is computed with them is an expectation of its
// own.
//
// Constants are rounded to nearest in every rounding mode; all else rounds in the caller's mode.
#pragma once

#include <cfenv>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace orvgen::test::written {

struct Number {
    float re, im;

    friend Number operator+(Number a, Number b) { return {a.re + b.re, a.im + b.im}; }
    friend Number operator-(Number a, Number b) { return {a.re - b.re, a.im - b.im}; }
    friend Number operator*(float c, Number a) { return {c * a.re, c * a.im}; }
};
using Numbers = std::vector<Number>;

// The sign of the exponent.
enum class Sign { Forward = -1, Inverse = 1 };

// exp(2 pi i num/den), each part rounded to nearest. The variables are volatile so that the
// rounding stays between the calls that set its mode.
inline Number root(std::size_t num, std::size_t den) {
    num %= den;
    if (4 * num % den == 0) {
        const Number quarters[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
        return quarters[4 * num / den];
    }
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    const volatile long double angle =
        2 * M_PIl * static_cast<long double>(num) / static_cast<long double>(den);
    const volatile float re = static_cast<float>(std::cos(angle));
    const volatile float im = static_cast<float>(std::sin(angle));
    std::fesetround(mode);
    return {re, im};
}
inline float cosine(std::size_t num, std::size_t den) { return root(num, den).re; }
inline float sine(std::size_t num, std::size_t den) { return root(num, den).im; }

// exp(+- 2 pi i num/den); a zero has no sign.
inline Number root(Sign sign, std::size_t num, std::size_t den) {
    const Number w = root(num, den);
    return {w.re, sign == Sign::Forward && w.im != 0 ? -w.im : w.im};
}

// A twiddle that shares its vector with others: all four products run, also where it is 1 or +-i.
inline Number twiddled(Number w, Number z) {
    return {z.re * w.re - z.im * w.im, z.re * w.im + z.im * w.re};
}

// A twiddle that is the same in all lanes: a quarter turn is an exchange and a sign; else the
// imaginary constant has the sign of the real one, and where its own sign is the other, sum and
// difference trade places.
inline Number rotated(Number w, Number z) {
    if (w.im == 0) return w.re > 0 ? z : Number{-z.re, -z.im};
    if (w.re == 0) return w.im > 0 ? Number{-z.im, z.re} : Number{z.im, -z.re};
    if ((w.re < 0) == (w.im < 0)) return {w.re * z.re - w.im * z.im, w.im * z.re + w.re * z.im};
    return {w.re * z.re + -w.im * z.im, w.re * z.im - -w.im * z.re};
}

// m +- i p and m -+ i p, the sign above for the inverse.
inline Number plusTurned(Sign sign, Number m, Number p) {
    if (sign == Sign::Forward) return {m.re + p.im, m.im - p.re};
    return {m.re - p.im, m.im + p.re};
}
inline Number minusTurned(Sign sign, Number m, Number p) {
    return plusTurned(sign == Sign::Forward ? Sign::Inverse : Sign::Forward, m, p);
}

// sum + c d: a negative constant is stored without its sign, and its product subtracted.
inline float withTerm(float sum, float c, float d) { return c < 0 ? sum - -c * d : sum + c * d; }

// A sum of sines of the direct form begins with its first positive term. Where none is positive the
// sum of the magnitudes is formed and stands with a minus in what follows.
struct Sines {
    float sum;
    bool minus;
};
inline Sines positiveFirst(std::vector<float> c, const std::vector<float>& d) {
    std::size_t first = 0;
    while (first < c.size() && c[first] < 0) ++first;
    const bool minus = first == c.size();
    if (minus) {
        first = 0;
        for (float& constant : c) constant = -constant;
    }
    float sum = c[first] * d[first];
    for (std::size_t j = 0; j < c.size(); ++j)
        if (j != first) sum = withTerm(sum, c[j], d[j]);
    return {sum, minus};
}
inline float operator+(float a, Sines b) { return b.minus ? a - b.sum : a + b.sum; }
inline float operator-(float a, Sines b) { return b.minus ? a + b.sum : a - b.sum; }

// 7 and 11: the real and the imaginary part of a sum of sines each by its own signs.
inline Numbers direct(Sign sign, const Numbers& z) {
    const std::size_t p = z.size(), h = (p - 1) / 2;
    Numbers s, d, y(p);
    for (std::size_t j = 1; j <= h; ++j) {
        s.push_back(z[j] + z[p - j]);
        d.push_back(z[j] - z[p - j]);
    }
    Number sum = s[0];
    for (std::size_t j = 1; j < h; ++j) sum = sum + s[j];
    y[0] = sum + z[0];
    for (std::size_t k = 1; k <= h; ++k) {
        Number a = z[0];
        std::vector<float> forRe, forIm, re, im;
        for (std::size_t j = 1; j <= h; ++j) {
            const float c = cosine(j * k, p);
            a = {withTerm(a.re, c, s[j - 1].re), withTerm(a.im, c, s[j - 1].im)};
            const float b = sine(j * k, p);
            forRe.push_back(sign == Sign::Forward ? b : -b);
            forIm.push_back(-forRe.back());
            re.push_back(d[j - 1].re);
            im.push_back(d[j - 1].im);
        }
        const Sines bRe = positiveFirst(forRe, im), bIm = positiveFirst(forIm, re);
        y[k] = {a.re + bRe, a.im + bIm};
        y[p - k] = {a.re - bRe, a.im - bIm};
    }
    return y;
}

inline Numbers two(const Numbers& z) { return {z[0] + z[1], z[0] - z[1]}; }

inline Numbers three(Sign sign, const Numbers& z) {
    const Number t = z[1] + z[2], d = z[1] - z[2];
    const Number m = z[0] - 0.5F * t, p = sine(1, 6) * d;
    return {z[0] + t, plusTurned(sign, m, p), minusTurned(sign, m, p)};
}

inline Numbers four(Sign sign, const Numbers& z) {
    const Number a = z[0] + z[2], b = z[1] + z[3], c = z[0] - z[2], d = z[1] - z[3];
    return {a + b, plusTurned(sign, c, d), a - b, minusTurned(sign, c, d)};
}

inline Numbers five(Sign sign, const Numbers& z) {
    const float c1 = cosine(1, 5), c2 = -cosine(2, 5), sin1 = sine(1, 5), sin2 = sine(2, 5);
    const Number s1 = z[1] + z[4], d1 = z[1] - z[4], s2 = z[3] + z[2], d2 = z[3] - z[2];
    const Number a1 = (c1 * s1 + z[0]) - c2 * s2, a2 = (z[0] - c2 * s1) + c1 * s2;
    const Number p1 = sin1 * d1 - sin2 * d2, p2 = sin2 * d1 + sin1 * d2;
    return {(s1 + s2) + z[0], plusTurned(sign, a1, p1), plusTurned(sign, a2, p2),
            minusTurned(sign, a2, p2), minusTurned(sign, a1, p1)};
}

inline Numbers butterfly(Sign sign, const Numbers& z) {
    switch (z.size()) {
        case 2:
            return two(z);
        case 3:
            return three(sign, z);
        case 4:
            return four(sign, z);
        case 5:
            return five(sign, z);
        case 7:
        case 11:
            return direct(sign, z);
        default:
            throw std::logic_error("no butterfly of this length");
    }
}

// Coprime R and M, R first: u[k1][n2] over x[M n1 + R n2], y[k] with k = k1 mod R and = k2 mod M.
template <class First, class Second>
Numbers goodThomas(std::size_t R, std::size_t M, const Numbers& x, const First& first,
                   const Second& second) {
    const std::size_t N = R * M;
    std::vector<Numbers> u;
    for (std::size_t n2 = 0; n2 < M; ++n2) {
        Numbers z;
        for (std::size_t n1 = 0; n1 < R; ++n1) z.push_back(x[(M * n1 + R * n2) % N]);
        u.push_back(first(z));
    }
    Numbers y(N);
    for (std::size_t k1 = 0; k1 < R; ++k1) {
        Numbers z;
        for (const Numbers& column : u) z.push_back(column[k1]);
        const Numbers out = second(z);
        for (std::size_t k = k1; k < N; k += R) y[k] = out[k % M];
    }
    return y;
}

// Cooley-Tukey, R-point columns first: column c takes x[c + M t], its row k has the twiddle
// exp(-+ 2 pi i c k / (R M)), the row k of all columns gives y[k + R q]. Rows lie in lanes beside
// each other, so that all products of a column run, but for the first one, which has none.
template <class Column, class Row>
Numbers cooleyTukey(Sign sign, std::size_t R, std::size_t M, const Numbers& x, const Column& column,
                    const Row& row) {
    std::vector<Numbers> v;
    for (std::size_t c = 0; c < M; ++c) {
        Numbers z;
        for (std::size_t t = 0; t < R; ++t) z.push_back(x[c + M * t]);
        v.push_back(column(z));
        for (std::size_t k = 0; k < R && c > 0; ++k)
            v[c][k] = twiddled(root(sign, c * k, R * M), v[c][k]);
    }
    Numbers y(R * M);
    for (std::size_t k = 0; k < R; ++k) {
        Numbers z;
        for (const Numbers& rows : v) z.push_back(rows[k]);
        const Numbers out = row(z);
        for (std::size_t q = 0; q < M; ++q) y[k + R * q] = out[q];
    }
    return y;
}

}  // namespace orvgen::test::written
