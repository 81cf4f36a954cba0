// SPDX-License-Identifier: MIT
// The single complex binary32 kernels compute lanes that no result depends on, whose exceptions are
// theirs all the same: batches raise them too, and no others.
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

// Compares the flags of a block of equal transforms with those of the single function. Returns all
// that the latter raised beside inexact.
std::uint32_t compareFlags(const Family<float>& family, int n, unsigned rounds) {
    constexpr std::uint32_t inexact = 0x20;
    std::mt19937 random(static_cast<unsigned>(n));
    const auto reals = static_cast<std::size_t>(2 * n);
    std::uint32_t seen = 0;
    for (unsigned round = 0; round < rounds; ++round) {
        std::vector<float> x = drawMixed(random, reals, round), y(reals);
        x.resize(reals + 2);  // zeros behind
        const std::uint32_t control = defaultControl | (round % 7 < 4 ? 0 : round % 7 - 3) << 13;
        const std::uint32_t single =
            flagsOf(control, [&] { EXPECT_EQ(family.single(x.data(), y.data(), n, 8), orvOk); });
        constexpr std::size_t count = 16;
        std::vector<float> all(count * reals);
        const std::uint32_t batch = flagsOf(control, [&] {
            EXPECT_EQ(family.batch({{x.data(), nullptr}, 1, 0}, {{all.data(), nullptr}, 1, n}, n,
                                   count, orvScaleNone),
                      orvOk);
        });
        EXPECT_EQ(batch, single) << family.name << " of " << n << " round " << round;
        if (batch != single) break;
        seen |= single & ~inexact;
    }
    return seen;
}

TEST(IdleLanes, RaiseTheExceptionsOfTheSingleFunctions) {
    constexpr std::uint32_t invalid = 1, overflow = 8, underflow = 0x10;
    for (const std::uint32_t target : runnableTargets()) {
        ASSERT_EQ(orvgBatchUse(target), orvOk);
        for (const Family<float>& family : families<float>()) {
            if (family.src.width != 2 || family.dst.width != 2) continue;
            for (const int n : family.numbers) {
                const std::uint32_t seen = compareFlags(family, n, 1500);
                EXPECT_EQ(seen, invalid | overflow | (n > 4 ? underflow : seen & underflow))
                    << family.name << " of " << n << " on " << nameOf(target);
            }
        }
    }
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}

}  // namespace
}  // namespace orvgen::test::batch
