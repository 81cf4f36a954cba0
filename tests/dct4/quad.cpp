// SPDX-License-Identifier: MIT
#include "dct4/quad.h"

#include "support/mpfr_number.h"

namespace orvgen::test::dct4 {
namespace {

// Three binary64 parts hold the 113 bits of the result; their sum is exact up to its rounding.
Quad rounded(Mpfr& wide) {
    Quad parts[3];
    for (Quad& part : parts) {
        const double head = wide.value();
        part = head;
        mpfr_sub_d(wide.x, wide.x, head, MPFR_RNDN);
    }
    return (parts[2] + parts[1]) + parts[0];
}

using Function = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

Quad ofAngle(Function function, std::int64_t num, std::int64_t den) {
    Mpfr angle(200);
    mpfr_const_pi(angle.x, MPFR_RNDN);
    mpfr_mul_si(angle.x, angle.x, num, MPFR_RNDN);
    mpfr_div_si(angle.x, angle.x, den, MPFR_RNDN);
    function(angle.x, angle.x, MPFR_RNDN);
    return rounded(angle);
}

QuadPair product(QuadPair z, QuadPair w) {
    return {z.re * w.re - z.im * w.im, z.re * w.im + z.im * w.re};
}

// The sum over n of z[n] exp(-2 pi i n k / L) in place, L = z.size() a power of two: even and odd
// samples by themselves, then their join. The circle's half turn is a multiple of L / 2.
void fourier(std::vector<QuadPair>& z, const UnitCircle& circle, std::int64_t halfTurn) {
    const std::size_t half = z.size() / 2;
    if (half == 0) return;
    std::vector<QuadPair> even(half), odd(half);
    for (std::size_t n = 0; n < half; ++n) {
        even[n] = z[2 * n];
        odd[n] = z[2 * n + 1];
    }
    fourier(even, circle, halfTurn);
    fourier(odd, circle, halfTurn);
    const std::int64_t step = halfTurn / static_cast<std::int64_t>(half);
    for (std::size_t k = 0; k < half; ++k) {
        const QuadPair e = even[k];
        const QuadPair o = product(odd[k], circle.point(-step * static_cast<std::int64_t>(k)));
        z[k] = {e.re + o.re, e.im + o.im};
        z[k + half] = {e.re - o.re, e.im - o.im};
    }
}

}  // namespace

// Exact zeros are given as such, which a rounded pi would miss.
Quad cosPi(std::int64_t num, std::int64_t den) {
    if ((2 * num) % den == 0 && (2 * num / den) % 2 != 0) return 0;
    return ofAngle(mpfr_cos, num, den);
}

Quad sinPi(std::int64_t num, std::int64_t den) {
    if (num % den == 0) return 0;
    return ofAngle(mpfr_sin, num, den);
}

Quad tanPi(std::int64_t num, std::int64_t den) { return ofAngle(mpfr_tan, num, den); }

Quad magnitude(Quad x) { return x < 0 ? -x : x; }

UnitCircle::UnitCircle(std::int64_t halfTurn) : turn(2 * halfTurn), step(1) {
    while (step * step < turn) step *= 2;
    for (std::int64_t k = 0; k < step; ++k)
        fine.push_back({cosPi(k, halfTurn), sinPi(k, halfTurn)});
    for (std::int64_t k = 0; k < turn; k += step) {
        coarse.push_back({cosPi(k, halfTurn), sinPi(k, halfTurn)});
    }
}

QuadPair UnitCircle::point(std::int64_t k) const {
    k = (k % turn + turn) % turn;
    return product(coarse[static_cast<std::size_t>(k / step)],
                   fine[static_cast<std::size_t>(k % step)]);
}

Quad DirectDct4::operator()(const std::vector<Quad>& x, std::int64_t k) const {
    Quad sum = 0;
    std::int64_t angle = 2 * k + 1;  // (2j + 1)(2k + 1) in steps of pi / (4N), a turn being 8N
    for (const Quad sample : x) {
        sum += sample * circle.cosine(angle);
        angle = (angle + 2 * (2 * k + 1)) % (8 * N);
    }
    return sum;
}

// With z[n] = x[2n] + i x[N - 1 - 2n], n = 0 .. N/2 - 1, and the angle of x[2n] in y[2k],
// pi/N (2n + 1/2)(2k + 1/2) = 2 pi n k / (N/2) + pi n / N + pi (4k + 1) / (4N):
//   y[2k] - i y[N - 1 - 2k] = exp(-i pi (4k + 1) / (4N)) sum over n of
//                             z[n] exp(-i pi n / N) exp(-2 pi i n k / (N/2))
std::vector<Quad> fastDct4(const std::vector<Quad>& x) {
    const std::size_t N = x.size();
    const auto halfTurn = static_cast<std::int64_t>(4 * N);
    const UnitCircle circle(halfTurn);
    std::vector<QuadPair> z(N / 2);
    for (std::size_t n = 0; n < z.size(); ++n) {
        const QuadPair sample{x[2 * n], x[N - 1 - 2 * n]};
        z[n] = product(sample, circle.point(-static_cast<std::int64_t>(4 * n)));
    }
    fourier(z, circle, halfTurn);
    std::vector<Quad> y(N);
    for (std::size_t k = 0; k < z.size(); ++k) {
        const QuadPair c = product(z[k], circle.point(-static_cast<std::int64_t>(4 * k + 1)));
        y[2 * k] = c.re;
        y[N - 1 - 2 * k] = -c.im;
    }
    return y;
}

}  // namespace orvgen::test::dct4
