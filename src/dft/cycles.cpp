// SPDX-License-Identifier: MIT
// The table of cycles; 12 and 16, which are split, and 18.
#include "cycles.h"

#include <map>
#include <stdexcept>

#include "roots.h"

namespace orvgen::dft {

const Cycle& cycleOf(std::size_t length) {
    static const std::map<std::size_t, Cycle> cycles = {
        {12, {.forward = forwardCycle12, .inverse = inverseCycle12}},
        {16, {.forward = forwardCycle16, .inverse = inverseCycle16}},
        {18, {.forward = forwardCycle18, .inverse = inverseCycle18}},
        {22, {.forward = forwardCycle22, .inverse = inverseCycle22}},
        {28, {.forward = forwardCycle28, .inverse = inverseCycle28}},
        {30, {.forward = forwardCycle30, .inverse = inverseCycle30}}};
    const auto found = cycles.find(length);
    if (found == cycles.end()) throw std::logic_error("no cycle of this length");
    return found->second;
}

// 12 = 4, 3
Spectrum forwardCycle12(const Reals& a) {
    std::vector<Real4<Value>> four;
    for (std::size_t n2 = 0; n2 < 3; ++n2) {
        const auto at = [&](std::size_t n1) { return a[(3 * n1 + 4 * n2) % 12]; };
        four.emplace_back(at(0), at(1), at(2), at(3));
    }
    Spectrum A(12);
    const Real3<Value> even(four[0].y0, four[1].y0, four[2].y0);
    A.set(0, even.y0);
    A.set(4, even.y1());
    const Real3<Value> odd(four[0].y2, four[1].y2, four[2].y2);
    A.set(6, odd.y0);
    A.set(2, odd.y2());
    const Vectors y = three(Direction::Forward, Vectors{four[0].y1(), four[1].y1(), four[2].y1()});
    A.set(9, y[0]);
    A.set(1, y[1]);
    A.set(5, y[2]);
    return A;
}

// 12 = 3, 4. Index r = (3 n1 + 4 n2) mod 12; the part of odd k is Re(i^n1 V[n2]).
SplitCycle inverseCycle12(const Spectrum& D, const SineFolds& folds) {
    const auto sine = [&](std::size_t k) {
        return isFolded(folds, k) ? D.at(k).im : sineOf60() * D.at(k).im;
    };
    const Reals h0 = hermitian3(D.real(0), D.at(4).re, sine(4));
    const Reals h2 = hermitian3(D.real(6), D.at(2).re, -sine(2));
    const Vectors V = three(Direction::Inverse, Vectors{D.at(9), D.at(1), D.at(5)});
    SplitCycle z{Reals(6), Reals(6)};
    for (std::size_t n2 = 0; n2 < 3; ++n2) {
        const Value even = h0[n2] + h2[n2];
        const Value odd = h0[n2] - h2[n2];
        for (std::size_t n1 = 0; n1 < 4; ++n1) {
            const std::size_t r = (3 * n1 + 4 * n2) % 12;
            if (r >= 6) continue;
            z.even[r] = n1 % 2 == 0 ? even : odd;
            const Value turnedPart[] = {V[n2].re, -V[n2].im, -V[n2].re, V[n2].im};
            z.odd[r] = turnedPart[n1];
        }
    }
    return z;
}

// 16 = 4 T 4. Row 2 holds real values, whose turn by 45 degrees takes one constant.
Spectrum forwardCycle16(const Reals& a) {
    std::vector<Real4<Value>> four;
    for (std::size_t c = 0; c < 4; ++c) four.emplace_back(a[c], a[c + 4], a[c + 8], a[c + 12]);
    Spectrum A(16);
    const Real4<Value> row0(four[0].y0, four[1].y0, four[2].y0, four[3].y0);
    A.set(0, row0.y0);
    A.set(8, row0.y2);
    A.set(4, row0.y1());

    Vectors row1;
    for (std::size_t c = 0; c < 4; ++c)
        row1.push_back(rotated(Direction::Forward, four[c].y1(), c, 16));
    const Vectors y = dft::four(Direction::Forward, row1);
    for (std::size_t q = 0; q < 4; ++q) A.set(1 + 4 * q, y[q]);

    const Constant K = kernelgen::cosTurn(1, 8);
    const Value t1 = K * four[1].y2;
    const Value t3 = K * four[3].y2;
    const Value x = t1 - t3;
    const Value s = t1 + t3;
    A.set(2, {four[0].y2 + x, -(four[2].y2 + s)});
    A.set(6, {four[0].y2 - x, four[2].y2 - s});
    return A;
}

SplitCycle inverseCycle16(const Spectrum& D, const SineFolds&) {
    const Reals h = hermitian4(D.real(0), D.real(8), D.at(4));
    const Constant K = kernelgen::cosTurn(1, 8);
    const Complex<Value> D2 = D.at(2), D6 = D.at(6);
    const Value sumRe = D2.re + D6.re, difRe = D2.re - D6.re;
    const Value sumIm = D2.im + D6.im, difIm = D6.im - D2.im;
    const Reals g{sumRe, K * (difRe - sumIm), difIm, -(K * (difRe + sumIm))};
    const Vectors V = four(Direction::Inverse, Vectors{D.at(1), D.at(5), D.at(9), D.at(13)});
    SplitCycle z{Reals(8), Reals(8)};
    for (std::size_t c = 0; c < 4; ++c) {
        const Complex<Value> v = rotated(Direction::Inverse, V[c], c, 16);
        z.even[c] = h[c] + g[c];
        z.even[c + 4] = h[c] - g[c];
        z.odd[c] = v.re;
        z.odd[c + 4] = -v.im;
    }
    return z;
}

// 18 = 3, 2 T 3, as the complex transform of this length: columns 0, 4, 2, so that the twiddles
// have the denominator 9, also in row 3, which holds real values. The sine of the first stage is
// merged into the twiddles that follow it.
Spectrum forwardCycle18(const Reals& a) {
    const std::size_t columns[] = {0, 4, 2};
    Reals row0, row3;
    Vectors row1, row2;
    for (const std::size_t c : columns) {
        const auto at = [&](std::size_t n1, std::size_t n2) {
            return a[(c + 3 * ((2 * n1 + 3 * n2) % 6)) % 18];
        };
        const Real3<Value> x(at(0, 0), at(1, 0), at(2, 0));
        const Real3<Value> y(at(0, 1), at(1, 1), at(2, 1));
        row0.push_back(x.y0 + y.y0);
        row3.push_back(x.y0 - y.y0);
        // rows 1 and 2 are m -+ i sin(pi/3) d
        const Complex<Value> first{x.m - y.m, -(x.d - y.d)};
        const Complex<Value> second{x.m + y.m, x.d + y.d};
        const auto twiddled = [&](const Complex<Value>& z, std::size_t k) -> Complex<Value> {
            if (c == 0) return {z.re, sineOf60() * z.im};
            const auto turn = static_cast<long>(c * k);
            const Constant wr = kernelgen::cosTurn(turn, 18);
            const Constant wi = -kernelgen::sinTurn(turn, 18);
            return {wr * z.re - (sineOf60() * wi) * z.im, wi * z.re + (sineOf60() * wr) * z.im};
        };
        row1.push_back(twiddled(first, 1));
        row2.push_back(twiddled(second, 2));
    }
    Spectrum A(18);
    const Real3<Value> k0(row0[0], row0[1], row0[2]);
    A.set(0, k0.y0);
    A.set(6, k0.y1());
    const Vectors k1 = three(Direction::Forward, row1);
    const Vectors k2 = three(Direction::Forward, row2);
    for (std::size_t q = 0; q < 3; ++q) {
        A.set(1 + 6 * q, k1[q]);
        A.set(2 + 6 * q, k2[q]);
    }
    // Row 3 times exp(-+ 2 pi i / 3), and of its butterfly bin 3 and the real part of bin 9.
    const Complex<Value> v1{-(half() * row3[1]), sineOf60() * row3[1]};
    const Complex<Value> v2{-(half() * row3[2]), -(sineOf60() * row3[2])};
    const Value t = v1.re + v2.re;
    A.set(3, {row3[0] + t, v1.im + v2.im});
    A.set(9, (row3[0] - half() * t) + sineOf60() * (v1.im - v2.im));
    return A;
}

Reals inverseCycle18(const Spectrum& D, OddPart) {
    const Value cPlus = D.real(0) + D.real(9);
    const Value cMinus = D.real(0) - D.real(9);
    const Complex<Value> wPlus = D.at(12) + D.at(3);
    const Complex<Value> wMinus = D.at(12) - D.at(3);
    const Reals h[] = {hermitian3(cPlus, wPlus.re, wPlus.im),
                       hermitian3(cMinus, wMinus.re, wMinus.im)};
    const auto Z = [&](std::size_t t) { return D.at(4 + 3 * t); };
    const Vectors u[] = {three(Direction::Inverse, Vectors{Z(0) + Z(3), Z(4) + Z(1), Z(2) + Z(5)}),
                         three(Direction::Inverse, Vectors{Z(0) - Z(3), Z(4) - Z(1), Z(2) - Z(5)})};
    Reals z(18);
    for (std::size_t n2 = 0; n2 < 2; ++n2)
        for (std::size_t n3 = 0; n3 < 3; ++n3) {
            const std::size_t n = (3 * n2 + 2 * n3) % 6;
            const Complex<Value> v = rotated(Direction::Inverse, u[n2][n3], 2 * n, 9);
            const Reals out = hermitian3(h[n2][n3], v.re, sineOf60() * v.im);
            for (std::size_t q = 0; q < 3; ++q) z[n + 6 * q] = out[q];
        }
    return z;
}

}  // namespace orvgen::dft
