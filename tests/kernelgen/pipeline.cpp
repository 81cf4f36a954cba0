// SPDX-License-Identifier: MIT
// Small flows through the whole kernel compiler: the assembled kernel gives the bits of the
// evaluated graph, in scalar binary64, in mixed binary32/binary64 and in four lanes.
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cstdint>
#include <cstring>
#include <random>

#include "kernelgen/compile.h"
#include "kernelgen/count.h"
#include "kernelgen/evaluate.h"
#include "kernelgen/number.h"
#include "small_flows.h"

extern "C" {
std::int32_t orvgSmall_5_32f(const float*, float*, std::int32_t);
std::int32_t orvgSmall_5_64f(const double*, double*, std::int32_t);
std::int32_t orvgSmall_8_32fc(const float*, float*, std::int32_t);
}

namespace {

using namespace orvgen::kernelgen;

template <class T>
using Kernel1 = std::int32_t(const T*, T*, std::int32_t);

template <class T>
void compare(const Kernel& kernel, Kernel1<T>* function, std::size_t inputs, std::size_t outputs) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<T> uniform(-1, 1);
    const ScaleKind kinds[] = {ScaleKind::ByN, ScaleKind::None, ScaleKind::BySqrtN,
                               ScaleKind::None};
    const std::int32_t flags[] = {1, 2, 4, 8};
    for (int round = 0; round < 200; ++round) {
        for (int f = 0; f < 4; ++f) {
            alignas(16) T src[64], dst[64], expected[64];
            for (std::size_t i = 0; i < inputs; ++i) src[i] = uniform(random);
            std::memset(dst, 0xa5, sizeof dst);
            std::memset(expected, 0xa5, sizeof expected);
            const double scale = storedScale(kinds[f], kernel.length, sizeof(T) == 4);
            const int modes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
            std::fesetround(modes[round % 4]);
            evaluate(kernel.flow, src, expected, scale);
            const std::int32_t status = function(src, dst, flags[f]);
            std::fesetround(FE_TONEAREST);
            ASSERT_EQ(status, 0);
            ASSERT_EQ(std::memcmp(dst, expected, sizeof dst), 0)
                << kernel.name << " flag " << flags[f] << " round " << round;
            // One element further on: the alignment-free body, in place.
            std::memmove(src + 2, src, inputs * sizeof(T));
            std::fesetround(modes[round % 4]);
            function(src + 2, src + 2, flags[f]);
            std::fesetround(FE_TONEAREST);
            ASSERT_EQ(std::memcmp(src + 2, expected, outputs * sizeof(T)), 0) << kernel.name;
        }
    }
}

TEST(Pipeline, MixedPrecisionScalars) {
    compare<float>(orvgen::test::smallRealKernel("s", Arithmetic::Single), orvgSmall_5_32f, 4, 6);
}

TEST(Pipeline, DoubleScalars) {
    compare<double>(orvgen::test::smallRealKernel("d", Arithmetic::Double), orvgSmall_5_64f, 4, 6);
}

TEST(Pipeline, FourLanes) {
    compare<float>(orvgen::test::smallLaneKernel("l"), orvgSmall_8_32fc, 16, 16);
}

TEST(Pipeline, GateAnswersInOrder) {
    float x[8] = {};
    EXPECT_EQ(orvgSmall_5_32f(nullptr, x, 3), -8);
    EXPECT_EQ(orvgSmall_5_32f(x, nullptr, 8), -8);
    EXPECT_EQ(orvgSmall_5_32f(x, x, 3), -16);
    EXPECT_EQ(orvgSmall_8_32fc(nullptr, x + 1, 8), -8);
}

TEST(Pipeline, CountsOfTheSmallFlow) {
    const auto kernel = orvgen::test::smallRealKernel("s", Arithmetic::Single);
    const Counts c = countOperations(kernel.flow);
    EXPECT_EQ(c.additions, 7);
    EXPECT_EQ(c.signSteps, 1);
    EXPECT_EQ(c.constantProducts, 4);
    EXPECT_EQ(c.scaleProducts, 5);
    EXPECT_EQ(c.conversions(), 5 + 4);  // widened: x0, a, d, y0, x3
    EXPECT_TRUE(kernel.flow.deadNodes().empty());
}

TEST(Pipeline, LaneCountsOfEight) {
    const LaneCounts c = countLanes(orvgen::test::smallLaneKernel("l").flow);
    EXPECT_EQ(c.distinctAdditions, 52);
    EXPECT_EQ(c.distinctMultiplications, 4);
    // 16 vector sums over two live lanes; twiddles and the last stage in four lanes
    EXPECT_EQ(c.executedAdditions, 4 * (16 + 2 + 4));
    EXPECT_EQ(c.executedMultiplications, 4 * 4);
}

TEST(Pipeline, NumbersFollowTheGraph) {
    using N = Number<Arithmetic::Single>;
    const auto kernel = orvgen::test::smallRealKernel("s", Arithmetic::Single);
    std::mt19937_64 random(11);
    std::uniform_real_distribution<float> uniform(-1, 1);
    for (int round = 0; round < 100; ++round) {
        float src[4], expected[6];
        std::array<N, 4> x;
        for (std::size_t i = 0; i < 4; ++i) {
            src[i] = uniform(random);
            x[i] = N(static_cast<double>(src[i]));
        }
        evaluate(kernel.flow, src, expected, 0.25);
        const auto y = orvgen::test::smallRealFlow(x);
        for (std::size_t i = 0; i < 5; ++i) {
            const N stored = narrow(signStep(scaledBy(0.25, y[i])));
            EXPECT_EQ(std::bit_cast<std::uint32_t>(static_cast<float>(stored.value())),
                      std::bit_cast<std::uint32_t>(expected[i]));
        }
    }
}

TEST(Pipeline, SameTextEveryTime) {
    const auto text = [] {
        return compileKernel(orvgen::test::smallLaneKernel("orvgX_8_32fc")).assembly;
    };
    EXPECT_EQ(text(), text());
}

}  // namespace
