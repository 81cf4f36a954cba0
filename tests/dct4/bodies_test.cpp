// SPDX-License-Identifier: MIT
// The straight-line bodies of the lengths to 32: each gives the bits of its written-out sequence of
// steps, or of its flow, in all rounding modes.
#include "dct4/compare.h"
#include "dct4/quad.h"
#include "dct4/recording.h"

namespace orvgen::test::dct4 {
namespace {

// The written-out steps of the short lengths. Every constant is rounded once from binary128, to
// nearest whatever the mode (not inlined and volatile: no arithmetic may change places with it),
// and every operation stands alone.
[[gnu::noinline]] Real constant(Quad (*function)(std::int64_t, std::int64_t), std::int64_t num,
                                std::int64_t den) {
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    volatile Real value = static_cast<Real>(function(num, den));
    std::fesetround(mode);
    return value;
}

struct Pair {
    Real re, im;
};

Pair turn(Pair z, std::int64_t num, std::int64_t den) {
    const Real c = constant(cosPi, num, den), s = constant(sinPi, num, den);
    return {c * z.re - s * z.im, s * z.re + c * z.im};
}

std::vector<Real> stepsOf2(const std::vector<Real>& x) {
    const Real c = constant(cosPi, 1, 8), s = constant(sinPi, 1, 8);
    return {c * x[0] + s * x[1], s * x[0] - c * x[1]};
}

std::vector<Real> stepsOf4(const std::vector<Real>& x) {
    const auto lifted = [](Real a, Real b, std::int64_t num) {
        const Real T = constant(tanPi, num, 32), S = constant(sinPi, num, 16);
        const Real a1 = a - T * b;
        const Real b1 = b + S * a1;
        return Pair{a1 - T * b1, b1};
    };
    const Pair z0 = lifted(x[0], x[3], 7), z1 = lifted(x[1], x[2], 5);
    const Real k = constant(cosPi, 1, 4);
    return {z0.im + z1.im, k * (z0.im - z1.im) + k * (z0.re + z1.re),
            k * (z0.im - z1.im) - k * (z0.re + z1.re), z0.re - z1.re};
}

std::vector<Pair> foldedLeaves(const std::vector<Pair>& z) {
    const std::size_t L = z.size();
    if (L == 1) return z;
    const Real k = constant(cosPi, 1, 4);
    std::vector<Pair> p, q;
    for (std::size_t i = 0; i < L / 2; ++i) {
        const Pair one = z[i], other = z[L - 1 - i];
        p.push_back({one.re + other.re, one.im - other.im});
        const Pair d{one.re - other.re, one.im + other.im};
        const auto odd = static_cast<std::int64_t>(2 * i + 1);
        q.push_back(L == 2 ? Pair{k * d.re - k * d.im, k * d.re + k * d.im}
                           : turn(d, odd, static_cast<std::int64_t>(2 * L)));
    }
    std::vector<Pair> leaves = foldedLeaves(p);
    const std::vector<Pair> behind = foldedLeaves(q);
    leaves.insert(leaves.end(), behind.begin(), behind.end());
    return leaves;
}

std::vector<Real> stepsFolded(const std::vector<Real>& x) {
    const std::size_t N = x.size(), Q = N / 4;
    const Real k = constant(cosPi, 1, 4);
    std::vector<Pair> A, B;
    for (std::size_t j = 0; j < Q; ++j) {
        const Real u = k * (x[N / 2 + j] + x[N / 2 - 1 - j]);
        const Real v = k * (x[N / 2 + j] - x[N / 2 - 1 - j]);
        const auto odd = static_cast<std::int64_t>(2 * j + 1),
                   den = static_cast<std::int64_t>(4 * N);
        A.push_back(turn({x[j] + u, v - x[N - 1 - j]}, odd, den));
        B.push_back(turn({x[j] - u, v + x[N - 1 - j]}, 3 * odd, den));
    }
    A = foldedLeaves(A);
    B = foldedLeaves(B);
    std::vector<Real> y(N);
    for (std::size_t l = 0; l < Q; ++l) {
        std::size_t r = 0;
        for (std::size_t bit = 1, mirror = Q / 2; bit < Q; bit *= 2, mirror /= 2) {
            if (l & bit) r |= mirror;
        }
        y[4 * r] = A[l].re;
        y[N - 1 - 4 * r] = A[l].im;
        y[4 * r + 1] = B[l].re;
        y[N - 2 - 4 * r] = B[l].im;
    }
    return y;
}

TEST(Dct4Bodies, GiveTheBitsOfTheWrittenSteps) {
    const auto expectSteps = [](std::int32_t N, const auto& steps) {
        Plan plan(N);
        compare(
            N, "length " + std::to_string(N), [&](const std::vector<Real>& x) { return plan(x); },
            steps);
        for (unsigned seed = 100; seed < 400; ++seed) {
            const std::vector<Real> x = randomVector(N, seed);
            expectSame(plan(x), steps(x), "length " + std::to_string(N));
        }
    };
    expectSteps(2, stepsOf2);
    expectSteps(4, stepsOf4);
    expectSteps(8, stepsFolded);
    expectSteps(16, stepsFolded);
}

TEST(Dct4Bodies, OfLength32GivesTheBitsOfItsFlow) {
    Plan plan(32);
    const Evaluation<Real> flow(bodyRecording(32));
    compare(
        32, "length 32", [&](const std::vector<Real>& x) { return plan(x); },
        [&](const std::vector<Real>& x) { return flow([&](int j) { return x[element(j)]; }); });
}

}  // namespace
}  // namespace orvgen::test::dct4
