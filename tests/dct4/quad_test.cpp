// SPDX-License-Identifier: MIT
// The reference of the accuracy tests is the transform that it is taken for.
#include "dct4/quad.h"

#include <gtest/gtest.h>

#include <random>

namespace orvgen::test::dct4 {
namespace {

double distance(Quad a, Quad b) { return static_cast<double>(magnitude(a - b)); }

TEST(Dct4Reference, KnowsThePointsOfTheCircle) {
    std::mt19937_64 generator(1);
    for (const std::int64_t halfTurn : {2, 7, 128, 524288}) {
        const UnitCircle circle(halfTurn);
        for (int i = 0; i < 50; ++i) {
            const std::int64_t k = static_cast<std::int64_t>(generator() % (6U * 524288)) - 524288;
            EXPECT_LT(distance(circle.cosine(k), cosPi(k, halfTurn)), 1e-33) << k;
            EXPECT_LT(distance(circle.sine(k), sinPi(k, halfTurn)), 1e-33) << k;
        }
    }
}

TEST(Dct4Reference, IsTheDefiningSum) {
    std::mt19937_64 generator(2);
    std::uniform_real_distribution<double> uniform(-1, 1);
    for (std::int64_t N = 2; N <= 131072; N *= 2) {
        std::vector<Quad> x(static_cast<std::size_t>(N));
        for (Quad& value : x) value = uniform(generator);
        const std::vector<Quad> y = fastDct4(x);
        const DirectDct4 direct(N);
        // A few roundings for each term of the sum.
        const double tolerance = 0x1p-110 * static_cast<double>(N);
        // Every output of the short lengths, some of the long ones.
        for (std::int64_t k = 0; k < N; k += N <= 256 ? 1 : N / 3 - 1) {
            EXPECT_LT(distance(y[static_cast<std::size_t>(k)], direct(x, k)), tolerance) << N;
        }
    }
}

}  // namespace
}  // namespace orvgen::test::dct4
