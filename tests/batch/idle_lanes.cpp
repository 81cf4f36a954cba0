// SPDX-License-Identifier: MIT
// Which exceptions of the single complex binary32 kernels the batches lack: those of the table, no
// others, and each of them.
#include "batch/idle_lanes.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "batch/comparison.h"

namespace orvgen::test::batch {
namespace {

using Number = std::numeric_limits<float>;

// Ordinary, zero, huge or tiny numbers, with a few that are none of these.
std::vector<float> drawMixed(std::mt19937& random, std::size_t reals, unsigned round) {
    constexpr float scales[] = {1, 0, Number::max(), Number::min()};
    constexpr float special[] = {Number::infinity(), -Number::infinity(), Number::quiet_NaN(),
                                 Number::max(),      -Number::max(),      Number::denorm_min()};
    std::uniform_real_distribution<float> uniform(-1, 1);
    std::vector<float> x(reals);
    for (float& value : x) value = uniform(random) * scales[round % 4];
    for (unsigned i = 0; i < round % 5; ++i) x[random() % reals] = special[random() % 6];
    return x;
}

// The flags of a block of equal transforms that the single function raises and the batch does not.
std::uint32_t lacking(const Family<float>& family, int n, std::uint32_t wanted) {
    std::mt19937 random(static_cast<unsigned>(n));
    const auto reals = static_cast<std::size_t>(2 * n);
    std::uint32_t found = 0;
    const unsigned rounds = wanted != 0 ? 20000 : 400;
    for (unsigned round = 0; round < rounds && (wanted == 0 || found != wanted); ++round) {
        std::vector<float> x = drawMixed(random, reals, round), y(reals);
        x.resize(reals + 2);  // zeros behind
        const std::uint32_t single = flagsOf(
            defaultControl, [&] { EXPECT_EQ(family.single(x.data(), y.data(), n, 8), orvOk); });
        constexpr std::size_t count = 16;
        std::vector<float> all(count * reals);
        const std::uint32_t batch = flagsOf(defaultControl, [&] {
            EXPECT_EQ(family.batch({{x.data(), nullptr}, 1, 0}, {{all.data(), nullptr}, 1, n}, n,
                                   count, orvScaleNone),
                      orvOk);
        });
        EXPECT_EQ(batch & ~single, 0U) << family.name << " of " << n;
        found |= single & ~batch;
    }
    return found;
}

TEST(IdleLanes, LackTheExceptionsOfTheTable) {
    for (const std::uint32_t target : runnableTargets()) {
        ASSERT_EQ(orvgBatchUse(target), orvOk);
        for (const Family<float>& family : families<float>()) {
            if (family.src.width != 2 || family.dst.width != 2) continue;
            for (const int n : family.numbers) {
                const std::uint32_t wanted = target == orvTargetSSE2 ? 0 : flagsOfIdleLanes(n);
                EXPECT_EQ(lacking(family, n, wanted), wanted)
                    << family.name << " of " << n << " on " << nameOf(target);
            }
        }
    }
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}

}  // namespace
}  // namespace orvgen::test::batch
