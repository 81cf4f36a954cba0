// SPDX-License-Identifier: MIT
// Cycles 22, 28 and 30.
#include <numeric>

#include "cycles.h"

namespace orvgen::dft {

namespace {

// The index with these residues.
std::size_t withResidues(std::size_t a, std::size_t A, std::size_t b, std::size_t B) {
    std::size_t index = a;
    while (index % B != b) index += A;
    return index;
}

std::vector<std::size_t> ascending(std::size_t h) {
    std::vector<std::size_t> order(h);
    std::iota(order.begin(), order.end(), std::size_t{1});
    return order;
}

}  // namespace

// 22 = 2, 11
Spectrum forwardCycle22(const Reals& a) {
    Reals sum, dif;
    for (std::size_t n = 0; n < 11; ++n) {
        const Value& x = a[2 * n];
        const Value& y = a[(11 + 2 * n) % 22];
        sum.push_back(x + y);
        dif.push_back(x - y);
    }
    Spectrum A(22);
    const Vectors even = realDirect(sum);
    const Vectors odd = realDirect(dif);
    A.set(0, even[0].re);
    A.set(11, odd[0].re);
    for (std::size_t k = 1; k <= 5; ++k) {
        A.set(withResidues(0, 2, k, 11), even[k]);
        A.set(withResidues(1, 2, k, 11), odd[k]);
    }
    return A;
}

// 22 = 2, 11
Reals inverseCycle22(const Spectrum& D, OddPart) {
    Vectors plus, minus;
    for (std::size_t k = 1; k <= 5; ++k) {
        const Complex<Value> even = D.at(withResidues(0, 2, k, 11));
        const Complex<Value> odd = D.at(withResidues(1, 2, k, 11));
        plus.push_back(even + odd);
        minus.push_back(even - odd);
    }
    const Reals h[] = {hermitianDirect(D.real(0) + D.real(11), plus, ascending(5)),
                       hermitianDirect(D.real(0) - D.real(11), minus, ascending(5))};
    Reals z(22);
    for (std::size_t n2 = 0; n2 < 2; ++n2)
        for (std::size_t n = 0; n < 11; ++n) z[(11 * n2 + 2 * n) % 22] = h[n2][n];
    return z;
}

// 28 = 4, 7
Spectrum forwardCycle28(const Reals& a) {
    Reals y0, y2;
    Vectors y1;
    for (std::size_t n2 = 0; n2 < 7; ++n2) {
        const auto at = [&](std::size_t n1) { return a[(7 * n1 + 4 * n2) % 28]; };
        const Real4<Value> x(at(0), at(1), at(2), at(3));
        y0.push_back(x.y0);
        y2.push_back(x.y2);
        y1.push_back(x.y1());
    }
    Spectrum A(28);
    const Vectors k0 = realDirect(y0);
    const Vectors k2 = realDirect(y2);
    A.set(0, k0[0].re);
    A.set(14, k2[0].re);
    for (std::size_t k = 1; k <= 3; ++k) {
        A.set(withResidues(0, 4, k, 7), k0[k]);
        A.set(withResidues(2, 4, k, 7), k2[k]);
    }
    const Vectors k1 = direct(Direction::Forward, y1);
    for (std::size_t k = 0; k < 7; ++k) A.set(withResidues(1, 4, k, 7), k1[k]);
    return A;
}

// 28 = 4, 7. The sums of the last two seven-point blocks run over the pairs backwards.
Reals inverseCycle28(const Spectrum& D, OddPart) {
    const Reals h = hermitian4(D.real(0), D.real(14), D.at(21));
    std::vector<Vectors> U;
    for (std::size_t k7 = 1; k7 <= 3; ++k7) {
        Vectors row;
        for (std::size_t k4 = 0; k4 < 4; ++k4) row.push_back(D.at(withResidues(k4, 4, k7, 7)));
        U.push_back(four(Direction::Inverse, row));
    }
    Reals z(28);
    for (std::size_t n4 = 0; n4 < 4; ++n4) {
        const std::vector<std::size_t> order =
            n4 < 2 ? ascending(3) : std::vector<std::size_t>{3, 2, 1};
        const Reals out = hermitianDirect(h[n4], Vectors{U[0][n4], U[1][n4], U[2][n4]}, order);
        for (std::size_t n7 = 0; n7 < 7; ++n7) z[(7 * n4 + 4 * n7) % 28] = out[n7];
    }
    return z;
}

namespace {

std::size_t index30(std::size_t k5, std::size_t k2, std::size_t k3) {
    return withResidues(withResidues(k5, 5, k2, 2), 10, k3, 3);
}

// The five-point blocks of the odd frequencies where these are subtracted: the products come
// before the centre, A1 = (c1 s1 - c2 s2) + z0 and A2 = (c1 s2 - c2 s1) + z0.
Reals hermitian5CentreLast(const Value& c0, const Complex<Value>& z1, const Complex<Value>& z2) {
    const Constant c1 = kernelgen::cosTurn(1, 5), c2 = -kernelgen::cosTurn(2, 5);
    const Constant sin1 = kernelgen::sinTurn(1, 5), sin2 = kernelgen::sinTurn(2, 5);
    const Value a1 = (c1 * z1.re - c2 * z2.re) + c0;
    const Value a2 = (c1 * z2.re - c2 * z1.re) + c0;
    const Value p1 = sin1 * z1.im + sin2 * z2.im;
    const Value p2 = sin2 * z1.im - sin1 * z2.im;
    return {(z1.re + z2.re) + c0, a1 - p1, a2 - p2, a2 + p2, a1 + p1};
}

Vectors five5CentreLast(Direction direction, const Vectors& z) {
    const Constant c1 = kernelgen::cosTurn(1, 5), c2 = -kernelgen::cosTurn(2, 5);
    const Constant sin1 = kernelgen::sinTurn(1, 5), sin2 = kernelgen::sinTurn(2, 5);
    const Vector s1 = z[1] + z[4], d1 = z[1] - z[4];
    const Vector s2 = z[3] + z[2], d2 = z[3] - z[2];
    const Vector a1 = (c1 * s1 - c2 * s2) + z[0];
    const Vector a2 = (c1 * s2 - c2 * s1) + z[0];
    const Vector p1 = turnedSum(direction, {sin1, -sin2}, Vectors{d1, d2});
    const Vector p2 = turnedSum(direction, {sin2, sin1}, Vectors{d1, d2});
    return {(s1 + s2) + z[0], a1 + p1, a2 + p2, a2 - p2, a1 - p1};
}

}  // namespace

// 30 = 5, 2, 3
Spectrum forwardCycle30(const Reals& a) {
    // y[n3][k2][k5]
    std::vector<std::vector<Vectors>> y;
    for (std::size_t n3 = 0; n3 < 3; ++n3) {
        std::vector<Vectors> five;
        for (std::size_t n2 = 0; n2 < 2; ++n2) {
            Reals x;
            for (std::size_t n5 = 0; n5 < 5; ++n5)
                x.push_back(a[(6 * n5 + 15 * n2 + 10 * n3) % 30]);
            five.push_back(real5(x));
        }
        y.push_back({{{five[0][0].re + five[1][0].re, {}},
                      five[0][1] + five[1][1],
                      five[0][2] + five[1][2]},
                     {{five[0][0].re - five[1][0].re, {}},
                      five[0][1] - five[1][1],
                      five[0][2] - five[1][2]}});
    }
    Spectrum A(30);
    for (std::size_t k2 = 0; k2 < 2; ++k2) {
        const Real3<Value> real(y[0][k2][0].re, y[1][k2][0].re, y[2][k2][0].re);
        A.set(index30(0, k2, 0), real.y0);
        A.set(index30(0, k2, 1), real.y1());
        for (std::size_t k5 = 1; k5 <= 2; ++k5) {
            const Vectors z =
                three(Direction::Forward, Vectors{y[0][k2][k5], y[1][k2][k5], y[2][k2][k5]});
            for (std::size_t k3 = 0; k3 < 3; ++k3) A.set(index30(k5, k2, k3), z[k3]);
        }
    }
    return A;
}

// 30 = 5, 2, 3
Reals inverseCycle30(const Spectrum& D, OddPart oddPart) {
    Reals r[2];
    Vectors U[2];
    for (std::size_t k2 = 0; k2 < 2; ++k2) {
        const bool centreLast = k2 == 1 && oddPart == OddPart::Subtracted;
        const Value& c0 = D.real(index30(0, k2, 0));
        const Complex<Value> z1 = D.at(index30(1, k2, 0)), z2 = D.at(index30(2, k2, 0));
        r[k2] = centreLast ? hermitian5CentreLast(c0, z1, z2) : hermitian5(c0, z1, z2);
        Vectors z;
        for (std::size_t k5 = 0; k5 < 5; ++k5) z.push_back(D.at(index30(k5, k2, 1)));
        U[k2] = centreLast ? five5CentreLast(Direction::Inverse, z) : five(Direction::Inverse, z);
    }
    Reals z(30);
    for (std::size_t n5 = 0; n5 < 5; ++n5) {
        const Value c[] = {r[0][n5] + r[1][n5], r[0][n5] - r[1][n5]};
        const Complex<Value> W[] = {U[0][n5] + U[1][n5], U[0][n5] - U[1][n5]};
        for (std::size_t n2 = 0; n2 < 2; ++n2) {
            const Reals out = hermitian3(c[n2], W[n2].re, sineOf60() * W[n2].im);
            for (std::size_t n3 = 0; n3 < 3; ++n3) z[(6 * n5 + 15 * n2 + 10 * n3) % 30] = out[n3];
        }
    }
    return z;
}

}  // namespace orvgen::dft
