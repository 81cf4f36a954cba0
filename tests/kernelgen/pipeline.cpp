// SPDX-License-Identifier: MIT
// Small flows through the whole kernel compiler: the assembled kernel gives the bits of the
// evaluated graph, in scalar binary64, in mixed binary32/binary64 and in four lanes, and its
// machine code has the shape that every kernel has.
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cstdint>
#include <cstring>
#include <random>
#include <sstream>

#include "kernelgen/compile.h"
#include "kernelgen/count.h"
#include "kernelgen/evaluate.h"
#include "kernelgen/number.h"
#include "small_flows.h"
#include "support/boundaries.h"
#include "support/shape.h"

extern "C" {
std::int32_t orvgSmall_5_32f(const float*, float*, std::int32_t);
std::int32_t orvgSmall_5_64f(const double*, double*, std::int32_t);
std::int32_t orvgSmall_8_32fc(const float*, float*, std::int32_t);
std::int32_t orvgCrowded_36_32f(const float*, float*, std::int32_t);
std::int32_t orvgCrowded_36_64f(const double*, double*, std::int32_t);
std::int32_t orvgCrowded_40_32fc(const float*, float*, std::int32_t);
std::int32_t orvgStreaming_40_32fc(const float*, float*, std::int32_t);
std::int32_t orvgZeroFirst_8_32f(const float*, float*, std::int32_t);
std::int32_t orvgZeroFirst_8_64f(const double*, double*, std::int32_t);
}

namespace {

using namespace orvgen::kernelgen;

template <class T>
using Kernel1 = std::int32_t(const T*, T*, std::int32_t);

template <class T>
void compare(const Kernel& kernel, Kernel1<T>* function, std::size_t inputs, std::size_t outputs) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<T> uniform(-1, 1);
    const ScaleKind forward =
        kernel.scale == ScaleRule::InverseByN ? ScaleKind::None : ScaleKind::ByN;
    const ScaleKind inverse =
        kernel.scale == ScaleRule::ForwardByN ? ScaleKind::None : ScaleKind::ByN;
    const ScaleKind kinds[] = {forward, inverse, ScaleKind::BySqrtN, ScaleKind::None};
    const std::int32_t flags[] = {1, 2, 4, 8};
    for (int round = 0; round < 200; ++round) {
        for (int f = 0; f < 4; ++f) {
            alignas(16) T src[96], dst[96], expected[96];
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
                << kernel.name.exported() << " flag " << flags[f] << " round " << round;
            // One element further on: the alignment-free body, in place.
            std::memmove(src + 2, src, inputs * sizeof(T));
            std::fesetround(modes[round % 4]);
            function(src + 2, src + 2, flags[f]);
            std::fesetround(FE_TONEAREST);
            ASSERT_EQ(std::memcmp(src + 2, expected, outputs * sizeof(T)), 0)
                << kernel.name.exported();
        }
    }
}

// Any overlap of src and dst, for kernels that promise it.
template <class T>
void compareOverlapping(const Kernel& kernel, Kernel1<T>* function, std::size_t count) {
    ASSERT_TRUE(kernel.readsAllFirst);
    std::mt19937_64 random(13);
    std::uniform_real_distribution<T> uniform(-1, 1);
    for (std::size_t from = 0; from <= 12; ++from) {
        for (std::size_t to = 0; to <= 12; ++to) {
            alignas(16) T room[128], expected[96];
            for (T& x : room) x = uniform(random);
            evaluate(kernel.flow, room + from, expected, 1);
            ASSERT_EQ(function(room + from, room + to, 8), 0);
            ASSERT_EQ(std::memcmp(room + to, expected, count * sizeof(T)), 0) << from << to;
        }
    }
}

// How often the body stores to the frame by this instruction.
long frameStores(const CompiledKernel& kernel, const std::string& mnemonic) {
    std::istringstream lines(kernel.assembly);
    long count = 0;
    for (std::string line; std::getline(lines, line);)
        count += line.starts_with("\t" + mnemonic + "\t") && line.find("[rdx") < line.find(',');
    return count;
}

TEST(Pipeline, RunsScalarsOfMixedPrecision) {
    compare<float>(orvgen::test::smallRealKernel({"s"}, Arithmetic::Single), orvgSmall_5_32f, 4, 6);
}

TEST(Pipeline, RunsDoubleScalars) {
    compare<double>(orvgen::test::smallRealKernel({"d"}, Arithmetic::Double), orvgSmall_5_64f, 4,
                    6);
}

TEST(Pipeline, RunsFourLanes) {
    compare<float>(orvgen::test::smallLaneKernel({"l"}), orvgSmall_8_32fc, 16, 16);
}

// Slots of 4, of 8 and of 16 bytes, in one frame where the types are mixed.
TEST(Pipeline, SpillsWhatTheRegistersDoNotHold) {
    const Kernel single = orvgen::test::crowdedRealKernel({"s"}, Arithmetic::Single);
    EXPECT_GT(frameStores(compileKernel(single), "movss"), 0);
    EXPECT_GT(frameStores(compileKernel(single), "movsd"), 0);
    compare<float>(single, orvgCrowded_36_32f, 36, 36);
    const Kernel wide = orvgen::test::crowdedRealKernel({"d"}, Arithmetic::Double);
    EXPECT_GT(frameStores(compileKernel(wide), "movsd"), 0);
    compare<double>(wide, orvgCrowded_36_64f, 36, 36);
    const Kernel lanes = orvgen::test::crowdedLaneKernel({"l_32fc"});
    EXPECT_GT(frameStores(compileKernel(lanes), "movaps"), 0);
    compare<float>(lanes, orvgCrowded_40_32fc, 80, 80);
}

TEST(Pipeline, ReadsWhatAZeroOverwrites) {
    compare<float>(orvgen::test::zeroFirstKernel({"s"}, Arithmetic::Single), orvgZeroFirst_8_32f, 8,
                   8);
    compare<double>(orvgen::test::zeroFirstKernel({"d"}, Arithmetic::Double), orvgZeroFirst_8_64f,
                    8, 8);
}

TEST(Pipeline, ReadsAllFirstWhereAnyOverlapIsPromised) {
    compareOverlapping<float>(orvgen::test::crowdedLaneKernel({"l_32fc"}), orvgCrowded_40_32fc, 80);
    compareOverlapping<float>(orvgen::test::streamingLaneKernel({"l_32fc"}), orvgStreaming_40_32fc,
                              80);
}

// Every kernel, twin and pool begins on a cache line; gate and bodies are as in the library.
TEST(Pipeline, GivesMachineCodeTheShapeOfKernels) {
    using namespace orvgen::test;
    const MachineCode code(ORVGEN_SMALL_KERNELS);
    for (const orvgen::KernelFamily& family : smallFamilies()) {
        const orvgen::FamilyInfo& info = *family.info;
        for (const int n : info.numbers) {
            const Kernel kernel = family.kernel(n);
            const bool twin = info.hasTwin(n);
            const bool single = info.isSingle();
            const bool small = info.name == "Small" && !info.isComplex();
            const std::int64_t reals = twin ? 2 * n : small ? 6 : n;
            KernelFacts facts;
            facts.name = orvgen::memberName(info, n);
            if (twin) facts.twin = orvgen::twinName(info, n);
            facts.pointerStep = single ? 4 : 8;
            facts.rules.srcBytes = (small ? 4 : reals) * facts.pointerStep;
            facts.rules.dstBytes = reals * facts.pointerStep;
            facts.rules.scalar = !twin;
            facts.rules.allReadsFirst = kernel.readsAllFirst;
            facts.twinRules = facts.rules;
            EXPECT_EQ(checkKernel(code, facts), std::vector<std::string>()) << facts.name;
            EXPECT_EQ(offTheirBoundary(code, facts.name), std::vector<std::string>());
            if (twin) {
                EXPECT_EQ(offTheirBoundary(code, facts.twin), std::vector<std::string>());
            }
        }
    }
}

TEST(Pipeline, LetsTheGateAnswerInOrder) {
    float x[8] = {};
    EXPECT_EQ(orvgSmall_5_32f(nullptr, x, 3), -8);
    EXPECT_EQ(orvgSmall_5_32f(x, nullptr, 8), -8);
    EXPECT_EQ(orvgSmall_5_32f(x, x, 3), -16);
    EXPECT_EQ(orvgSmall_8_32fc(nullptr, x + 1, 8), -8);
}

TEST(Pipeline, CountsTheSmallFlow) {
    const auto kernel = orvgen::test::smallRealKernel({"s"}, Arithmetic::Single);
    const Counts c = countOperations(kernel.flow);
    EXPECT_EQ(c.additions, 7);
    EXPECT_EQ(c.signSteps, 1);
    EXPECT_EQ(c.constantProducts, 4);
    EXPECT_EQ(c.scaleProducts, 5);
    EXPECT_EQ(c.conversions(), 5 + 4);  // widened: x0, a, d, y0, x3
    EXPECT_TRUE(kernel.flow.deadNodes().empty());
}

TEST(Pipeline, CountsTheLanesOfEight) {
    const LaneCounts c = countLanes(orvgen::test::smallLaneKernel({"l"}).flow);
    EXPECT_EQ(c.distinctAdditions, 52);
    EXPECT_EQ(c.distinctMultiplications, 4);
    // 16 vector sums over two live lanes; twiddles and the last stage in four lanes
    EXPECT_EQ(c.executedAdditions, 4 * (16 + 2 + 4));
    EXPECT_EQ(c.executedMultiplications, 4 * 4);
}

TEST(Pipeline, RunsNumbersAsTheGraph) {
    using N = Number<Arithmetic::Single>;
    const auto kernel = orvgen::test::smallRealKernel({"s"}, Arithmetic::Single);
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

TEST(Pipeline, WritesTheSameTextEveryTime) {
    const auto text = [] {
        return compileKernel(orvgen::test::smallLaneKernel({"X_8_32fc"})).assembly;
    };
    EXPECT_EQ(text(), text());
}

}  // namespace
