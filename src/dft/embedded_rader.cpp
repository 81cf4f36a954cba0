// SPDX-License-Identifier: MIT
#include "embedded_rader.h"

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

// z[0], and the cycle's spectrum times the constants, of one real lane.
struct Lane1 {
    Value y0;
    Spectrum D;
};

Lane1 product(const plan::LaneRader& plan, const Reals& z) {
    const std::size_t p = z.size(), L = p - 1, m = L / 2;
    Reals a;
    for (std::size_t q = 0; q < L; ++q) a.push_back(z[power(p, L - q)]);
    const Spectrum A = cycleOf(L).forward(a);

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

// X[g^(r+u)] = P[r] + i Q[r] of parts that come back apart.
Vectors joinedBehind(Cycle::SplitInverse inverse, const plan::LaneRader& plan, bool forward,
                     const Lane1& re, const Lane1& im) {
    const std::size_t L = re.D.length(), p = L + 1;
    const SplitCycle x = inverse(re.D, plan.sineFolds), y = inverse(im.D, plan.sineFolds);
    Vectors X(p);
    for (std::size_t r = 0; r < L / 2; ++r) {
        const Vector P{x.even[r], y.even[r]};
        const Vector Q{x.odd[r], y.odd[r]};
        const Vector T = forward ? timesI(Q) : timesMinusI(Q);
        const std::size_t k = power(p, r + offsetOf(plan));
        X[k] = P + T;
        X[p - k] = P - T;
    }
    return X;
}

// The same of the spectra of the real and of the imaginary parts of P + i Q.
Vectors joinedBefore(Cycle::WholeInverse inverse, const plan::LaneRader& plan, bool forward,
                     const Lane1& re, const Lane1& im) {
    const std::size_t L = re.D.length(), m = L / 2, p = L + 1;
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
    const Reals xRe = inverse(toRe, forward ? OddPart::Subtracted : OddPart::Added);
    const Reals xIm = inverse(toIm, forward ? OddPart::Added : OddPart::Subtracted);
    Vectors X(p);
    for (std::size_t r = 0; r < L; ++r) X[power(p, r + offsetOf(plan))] = {xRe[r], xIm[r]};
    return X;
}

}  // namespace

Vectors laneRader(const plan::LaneRader& plan, Direction direction, const Vectors& z) {
    const bool forward = direction == Direction::Forward;
    Reals zRe, zIm;
    for (const Vector& v : z) {
        zRe.push_back(v.re);
        zIm.push_back(v.im);
    }
    const Lane1 re = product(plan, zRe);
    const Lane1 im = product(plan, zIm);
    const Cycle& cycle = cycleOf(z.size() - 1);
    const auto* split = std::get_if<Cycle::SplitInverse>(&cycle.inverse);
    Vectors X =
        split ? joinedBehind(*split, plan, forward, re, im)
              : joinedBefore(std::get<Cycle::WholeInverse>(cycle.inverse), plan, forward, re, im);
    X[0] = {re.y0, im.y0};
    return X;
}

}  // namespace orvgen::dft
