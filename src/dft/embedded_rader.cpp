// SPDX-License-Identifier: MIT
#include "embedded_rader.h"

#include <stdexcept>

#include "cycles.h"
#include "flows/number_theory.h"
#include "flows/rader_constants.h"

namespace orvgen::dft {

namespace {

std::size_t power(std::size_t p, std::size_t exponent) {
    const long g = flows::smallestRoot(static_cast<long>(p));
    return static_cast<std::size_t>(
        flows::powerModulo(g, static_cast<long>(exponent % (p - 1)), static_cast<long>(p)));
}

std::size_t offsetOf(const plan::LaneRader& plan) { return static_cast<std::size_t>(plan.offset); }

Spectrum forwardCycle(const Reals& a) {
    switch (a.size()) {
        case 12:
            return forwardCycle12(a);
        case 16:
            return forwardCycle16(a);
        case 18:
            return forwardCycle18(a);
        case 22:
            return forwardCycle22(a);
        case 28:
            return forwardCycle28(a);
        case 30:
            return forwardCycle30(a);
        default:
            throw std::logic_error("no cycle of this length");
    }
}

Reals inverseCycle(const Spectrum& D, OddPart oddPart) {
    switch (D.length()) {
        case 18:
            return inverseCycle18(D);
        case 22:
            return inverseCycle22(D);
        case 28:
            return inverseCycle28(D);
        case 30:
            return inverseCycle30(D, oddPart);
        default:
            throw std::logic_error("no inverse cycle of this length");
    }
}

// z[0], and the cycle's spectrum times the constants, of one real lane.
struct Lane1 {
    Value y0;
    Spectrum D;
};

Lane1 product(const plan::LaneRader& plan, const Reals& z) {
    const std::size_t p = z.size(), L = p - 1, m = L / 2;
    Reals a;
    for (std::size_t q = 0; q < L; ++q) a.push_back(z[power(p, L - q)]);
    const Spectrum A = forwardCycle(a);

    const flows::RaderConstants K(static_cast<int>(p), static_cast<long>(power(p, offsetOf(plan))));
    Spectrum D(L);
    D.set(0, z[0] + K.re[0] * A.real(0));
    D.set(m, K.re[m] * A.real(m));
    for (std::size_t k = 1; k < m; ++k) {
        const bool folded = isFolded(plan.sineFolds, k);
        const Constant Ir = folded ? sineOf60() * K.re[k] : K.re[k];
        const Constant Ii = folded ? sineOf60() * K.im[k] : K.im[k];
        const Complex<Value> z1 = A.at(k);
        D.set(k, {K.re[k] * z1.re - K.im[k] * z1.im, Ii * z1.re + Ir * z1.im});
    }
    return {z[0] + A.real(0), D};
}

}  // namespace

Vectors laneRader(const plan::LaneRader& plan, Direction direction, const Vectors& z) {
    const std::size_t p = z.size(), L = p - 1, m = L / 2;
    const bool forward = direction == Direction::Forward;
    Reals zRe, zIm;
    for (const Vector& v : z) {
        zRe.push_back(v.re);
        zIm.push_back(v.im);
    }
    const Lane1 re = product(plan, zRe);
    const Lane1 im = product(plan, zIm);
    Vectors X(p);
    X[0] = {re.y0, im.y0};

    if (L == 12 || L == 16) {
        const auto split = [&](const Spectrum& D) {
            return L == 12 ? inverseCycle12(D, plan.sineFolds) : inverseCycle16(D);
        };
        const SplitCycle x = split(re.D), y = split(im.D);
        for (std::size_t r = 0; r < m; ++r) {
            const Vector P{x.even[r], y.even[r]};
            const Vector Q{x.odd[r], y.odd[r]};
            const Vector T = forward ? timesI(Q) : timesMinusI(Q);
            const std::size_t k = power(p, r + offsetOf(plan));
            X[k] = P + T;
            X[p - k] = P - T;
        }
        return X;
    }

    Spectrum toRe(L), toIm(L);
    for (std::size_t k = 0; k <= m; ++k) {
        const Complex<Value> r = re.D.at(k), i = im.D.at(k);
        const bool isReal = k == 0 || k == m;
        const auto put = [&](Spectrum& D, const Complex<Value>& v, bool minus) {
            if (isReal)
                D.set(k, minus ? -v.re : v.re);
            else
                D.set(k, minus ? -v : v);
        };
        put(toRe, k % 2 == 0 ? r : i, k % 2 == 1 && forward);
        put(toIm, k % 2 == 0 ? i : r, k % 2 == 1 && !forward);
    }
    const Reals xRe = inverseCycle(toRe, forward ? OddPart::Subtracted : OddPart::Added);
    const Reals xIm = inverseCycle(toIm, forward ? OddPart::Added : OddPart::Subtracted);
    for (std::size_t r = 0; r < L; ++r) X[power(p, r)] = {xRe[r], xIm[r]};
    return X;
}

}  // namespace orvgen::dft
