// SPDX-License-Identifier: MIT
// The Hartley flows by their bits: against the same algorithms on plain numbers, against the forms
// of the smallest lengths written down by hand, and against the forward transform.
#include "hartley/hartley.h"
#include "realdft/forward.h"
#include "support/flow_runs.h"

namespace orvgen::test {
namespace {

using kernelgen::Graph;
using realdft::PackedFormat;

template <class T>
std::vector<T> transform(const std::vector<T>& x, double scale) {
    static Graphs<int> flows([](int n) { return hartley::hartleyGraph(n, arithmeticOf<T>); });
    return runGraph(flows(static_cast<int>(x.size())), x, x.size(), scale);
}

template <class T>
class HartleyBits : public testing::Test {};
TYPED_TEST_SUITE(HartleyBits, Elements);

TYPED_TEST(HartleyBits, GraphAndPlainNumbersAgree) {
    using T = TypeParam;
    for (const int n : kLengths) {
        const double scale = scaleOf(Scaling::ByN, n, isSingle<T>);
        for (unsigned seed = 0; seed < 4; ++seed) {
            const auto x = randomValues<T>(n, seed);
            const auto expected = hartley::transform(n, plainNumbers(x));
            EXPECT_TRUE(sameBits(transform(x, scale), storedNumbers<T>(expected, scale))) << n;
        }
    }
}

TYPED_TEST(HartleyBits, SmallLengthsAreTheirWrittenForms) {
    using T = TypeParam;
    for (const int n : {2, 3, 4, 5, 6, 7, 8, 11})
        for (const double scale : storedScales<T>(n))
            for (unsigned seed = 0; seed < 200; ++seed)
                for (const auto& x : {randomValues<T>(n, seed), signedUnits<T>(n, seed)})
                    EXPECT_TRUE(
                        sameBits(transform(x, scale), BaseForms<RulesOf<T>>::hartley(x, scale)))
                        << n << " seed " << seed;
}

// H[k] is the sum of R[k] and -I[k], H[N-k] that of R[k] and I[k], in the type of the data.
TYPED_TEST(HartleyBits, AreSumsOfTheForwardTransform) {
    using T = TypeParam;
    int lengths = 0;
    for (const int n : kLengths) {
        if (!hartley::runsForwardFlow(n)) continue;
        ++lengths;
        const Graph forward = realdft::forwardGraph(n, PackedFormat::Ccs, arithmeticOf<T>);
        for (unsigned seed = 0; seed < 10; ++seed) {
            const auto x = randomValues<T>(n, seed);
            const auto X = runGraph(forward, x, static_cast<std::size_t>(n + 2), 1.0);
            const auto H = transform(x, 1.0);
            for (std::size_t k = 0; 2 * k <= x.size(); ++k) {
                const T R = X[2 * k];
                if (k == 0 || 2 * k == x.size()) {
                    EXPECT_EQ(H[k], R) << n;
                    continue;
                }
                const T I = X[2 * k + 1];
                EXPECT_EQ(H[k], R + (-I)) << n << " bin " << k;
                EXPECT_EQ(H[x.size() - k], R + I) << n << " bin " << k;
            }
        }
    }
    EXPECT_EQ(lengths, 28);
}

TYPED_TEST(HartleyBits, TwiceIsTheIdentity) {
    using T = TypeParam;
    for (const int n : kLengths) {
        const auto scales = storedScales<T>(n);  // 1, 1/N, 1/sqrt(N)
        for (const auto& [first, second] :
             {std::pair{scales[0], scales[1]}, {scales[1], scales[0]}, {scales[2], scales[2]}}) {
            const auto x = randomValues<T>(n, static_cast<unsigned>(n));
            EXPECT_LT(relativeError(x, transform(transform(x, first), second)), 8) << n;
        }
    }
}

TYPED_TEST(HartleyBits, ImpulseGivesTheScaleEverywhere) {
    using T = TypeParam;
    for (const int n : kLengths) {
        std::vector<T> x(static_cast<std::size_t>(n), T(0));
        x[0] = 1;
        for (const double scale : storedScales<T>(n))
            for (const T v : transform(x, scale)) EXPECT_EQ(v, static_cast<T>(scale)) << n;
    }
}

TYPED_TEST(HartleyBits, KeepZerosOfEitherSign) {
    using T = TypeParam;
    for (const int n : kLengths) {
        const std::vector<T> zeros(static_cast<std::size_t>(n), T(0));
        for (const T v : transform(zeros, 1.0)) EXPECT_TRUE(v == 0 && !std::signbit(v)) << n;
        const std::vector<T> negative(static_cast<std::size_t>(n), -T(0));
        const auto H = transform(negative, 1.0);
        EXPECT_TRUE(H[0] == 0 && std::signbit(H[0])) << n;
        for (const T v : H) EXPECT_EQ(v, T(0)) << n;
    }
}

// At length 8 the difference of bin 3 is v - q: a zero of it keeps the sign of u - p.
TYPED_TEST(HartleyBits, EightPointsKeepTheSignOfAZero) {
    using T = TypeParam;
    std::vector<T> x(8, T(0));
    x[0] = -T(0);
    const auto H = transform(x, 1.0);
    EXPECT_TRUE(std::signbit(H[3]));   // (u - p) - (v - q) = -0 - (+0)
    EXPECT_FALSE(std::signbit(H[5]));  // (u - p) + (v - q) = -0 + (+0)
}

TYPED_TEST(HartleyBits, TwoPointsAreTheForwardTransform) {
    using T = TypeParam;
    const Graph forward = realdft::forwardGraph(2, PackedFormat::Pack, arithmeticOf<T>);
    for (const double scale : storedScales<T>(2)) {
        for (unsigned seed = 0; seed < 20; ++seed) {
            const auto x = randomValues<T>(2, seed);
            EXPECT_TRUE(sameBits(transform(x, scale), runGraph(forward, x, 2, scale)));
        }
    }
}

}  // namespace
}  // namespace orvgen::test
