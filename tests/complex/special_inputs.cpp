// SPDX-License-Identifier: MIT
// Impulses, ones, NaN and infinities through the complex kernels: what is exact, and how far a
// value that is no number reaches.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "complex/complex_calls.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();

using Vector = std::vector<float>;

Vector random(int length) {
    std::mt19937 engine(static_cast<unsigned>(length));
    std::uniform_real_distribution<float> value(-1, 1);
    Vector x(static_cast<std::size_t>(2 * length));
    for (float& v : x) v = value(engine);
    return x;
}

// Both directions of a binary32 length, those that exist.
template <class Check>
void bothDirections(int length, Check check) {
    for (const Direction direction : kBothDirections) {
        const ListedKernel* k = complexKernel(direction, length, Precision::Single);
        ASSERT_NE(k, nullptr);
        SCOPED_TRACE(k->name);
        check(*k);
    }
}

TEST(ComplexInputs, ImpulseAtZeroIsExactInRaderKernels) {
    for (const DataRow& row : dataTable("complex_f32_rader").rows()) {
        bothDirections(static_cast<int>(row.integer("length")), [](const ListedKernel& k) {
            Vector x(k.srcCount);
            x[0] = 1;
            const Vector y = transform(k, x);
            for (std::size_t i = 0; i < y.size(); ++i) EXPECT_EQ(y[i], i % 2 ? 0.0F : 1.0F) << i;
        });
    }
}

TEST(ComplexInputs, OnesAreExactWhereListed) {
    for (const long n : dataTable("complex_f32_all_ones").list("length")) {
        bothDirections(static_cast<int>(n), [&](const ListedKernel& k) {
            Vector x(k.srcCount);
            for (std::size_t i = 0; i < x.size(); i += 2) x[i] = 1;
            const Vector y = transform(k, x);
            for (std::size_t i = 0; i < y.size(); ++i) {
                EXPECT_EQ(y[i], i == 0 ? static_cast<float>(n) : 0.0F) << i;
            }
        });
    }
}

// Neither is exact in a convolution of another length, but both are nearly so.
TEST(ComplexInputs, BluesteinKernelsAreNearlyExact) {
    for (const DataRow& row : dataTable("complex_f32_bluestein").rows()) {
        bothDirections(static_cast<int>(row.integer("length")), [](const ListedKernel& k) {
            Vector impulse(k.srcCount), ones(k.srcCount);
            impulse[0] = 1;
            for (std::size_t i = 0; i < ones.size(); i += 2) ones[i] = 1;
            const Vector a = transform(k, impulse), b = transform(k, ones);
            float worstA = 0, worstB = 0;
            for (std::size_t i = 0; i < a.size(); ++i) {
                worstA = std::max(worstA, std::abs(a[i] - (i % 2 ? 0.0F : 1.0F)));
                worstB = std::max(worstB,
                                  std::abs(b[i] - (i == 0 ? static_cast<float>(k.length) : 0.0F)));
            }
            EXPECT_GT(worstA, 0);
            EXPECT_LE(worstA, 4e-7F);
            EXPECT_GT(worstB, 0);
            EXPECT_LE(worstB, 4e-6F);
            EXPECT_NE(b[1], 0);
        });
    }
}

TEST(ComplexInputs, NanReachesAsFarAsListed) {
    for (const DataRow& row : dataTable("complex_f32_nan_reach").rows()) {
        bothDirections(static_cast<int>(row.integer("length")), [&](const ListedKernel& k) {
            Vector x = random(k.length);
            x[static_cast<std::size_t>(2 * row.integer("element"))] = nan;
            long parts = 0;
            bool imaginary = false;
            const Vector y = transform(k, x);
            for (std::size_t i = 0; i < y.size(); ++i) {
                if (!std::isnan(y[i])) continue;
                ++parts;
                imaginary |= i % 2 == 1;
            }
            EXPECT_GT(parts, 0);
            EXPECT_TRUE(row.empty("parts") || parts == row.integer("parts")) << parts;
            EXPECT_EQ(imaginary, !row.flag("real_only"));
        });
    }
}

// The convolution carries a NaN to both parts of every output but the first. There it stays in its
// own part, unless a twiddle of 1 has been multiplied into it on its way (0 times NaN is a NaN).
TEST(ComplexInputs, NanSpreadsThroughTheConvolutionOfRaderKernels) {
    for (const DataRow& row : dataTable("complex_f32_rader").rows()) {
        bothDirections(static_cast<int>(row.integer("length")), [&](const ListedKernel& k) {
            for (std::size_t at = 2; at < k.srcCount; ++at) {
                Vector x = random(k.length);
                x[at] = nan;
                const Vector y = transform(k, x);
                for (std::size_t i = 2; i < y.size(); ++i)
                    EXPECT_TRUE(std::isnan(y[i])) << "input " << at << ", output " << i;
                EXPECT_TRUE(std::isnan(y[at % 2])) << "input " << at;
                const bool stays = at == 2 || row.empty("twiddle_orders");
                EXPECT_FALSE(stays && std::isnan(y[1 - at % 2])) << "input " << at;
            }
        });
    }
}

// The element behind src is multiplied by zero: no matter, unless it is no number.
TEST(ComplexInputs, BluesteinKernelsReadOneElementBehind) {
    for (const DataRow& row : dataTable("complex_f32_bluestein").rows()) {
        bothDirections(static_cast<int>(row.integer("length")), [](const ListedKernel& k) {
            const Vector x = random(k.length);
            const Vector y = transform(k, x, 0.0F);
            for (const float behind : {1.0F, -3e38F, 1e-42F}) EXPECT_EQ(transform(k, x, behind), y);
            for (const float behind : {inf, -inf, nan}) {
                for (const float v : transform(k, x, behind)) EXPECT_TRUE(std::isnan(v));
            }
        });
    }
}

TEST(ComplexInputs, AnImpulseAtOneGivesTheRootsInOrder) {
    for (const Direction direction : kBothDirections) {
        const ListedKernel* k = complexKernel(direction, 15, Precision::Single);
        ASSERT_NE(k, nullptr);
        Vector x(k->srcCount);
        x[2] = 1;
        const Vector y = transform(*k, x);
        for (std::size_t i = 0; i < 15; ++i) {
            const double angle = 2 * std::numbers::pi * static_cast<double>(i) / 15;
            EXPECT_NEAR(y[2 * i], std::cos(angle), 1e-6) << k->name;
            EXPECT_NEAR(y[2 * i + 1], (direction == Direction::Inverse ? 1 : -1) * std::sin(angle),
                        1e-6)
                << k->name;
        }
    }
}

// An infinity in the real part of x[1], column 1 of the first join: every row k of the column
// becomes (inf, finite). The twiddle of row 0 is 1 and multiplied like any other, 0 times infinity
// makes its imaginary part a NaN; at 8 the twiddle -i of row 2 does so to the real part. Other rows
// become (inf, -+inf). The second stage turns the row's quarter q mod 4 = 1 and 3 by a quarter at
// 16; at 32 and 64 it turns by q mod 4 eighths, which adds both parts of the number for odd q.
bool infinityMakesNaN(int n, std::size_t k, bool imaginary) {
    const std::size_t R = n == 64 ? 8 : 4;
    const std::size_t row = k % R, q = k / R % 4;
    if (n == 8) return row == 0 ? imaginary : row == 2 && !imaginary;
    if (n == 16) return row == 0 && imaginary == (q % 2 == 0);
    if (q % 2 == 0) return row == 0 && imaginary == (q == 0);
    return row == 0 || imaginary == (q == 3);
}

TEST(ComplexInputs, AnInfinityThroughATrivialTwiddleIsANaN) {
    for (const int n : {8, 16, 32, 64}) {
        bothDirections(n, [n](const ListedKernel& k) {
            Vector x(k.srcCount);
            for (std::size_t i = 0; i < x.size(); i += 2) x[i] = 1;
            x[2] = inf;
            const Vector y = transform(k, x);
            for (std::size_t i = 0; i < y.size(); ++i)
                EXPECT_EQ(std::isnan(y[i]), infinityMakesNaN(n, i / 2, i % 2 == 1)) << i;
        });
    }
    // Column 0 has no twiddles.
    bothDirections(8, [](const ListedKernel& k) {
        Vector x(k.srcCount);
        x[0] = inf;
        const Vector y = transform(k, x);
        for (std::size_t i = 0; i < y.size(); ++i) EXPECT_EQ(std::isinf(y[i]), i % 2 == 0) << i;
    });
}

TEST(ComplexInputs, LengthThreeOfOnesIsExact) {
    bothDirections(3, [](const ListedKernel& k) {
        EXPECT_EQ(transform(k, Vector{1, 0, 1, 0, 1, 0}), (Vector{3, 0, 0, 0, 0, 0}));
    });
}

// The kernel of length 3 takes its products in binary64; the same formula in binary32 alone rounds
// differently for some inputs.
TEST(ComplexInputs, LengthThreeIsNotBinary32Alone) {
    const ListedKernel* k = complexKernel(Direction::Forward, 3, Precision::Single);
    ASSERT_NE(k, nullptr);
    const float s = 0.8660254F;
    int differing = 0;
    std::mt19937 engine(3);
    std::uniform_real_distribution<float> value(-1, 1);
    for (int i = 0; i < 1000; ++i) {
        Vector x(6);
        for (float& v : x) v = value(engine);
        const Vector y = transform(*k, x);
        const float tRe = x[2] + x[4], dIm = x[3] - x[5];
        const float half = 0.5F * tRe;
        const float mRe = x[0] - half, pIm = s * dIm;
        const float y1 = mRe + pIm;
        EXPECT_NEAR(y[2], y1, 1e-6);
        if (y[2] != y1) ++differing;
    }
    EXPECT_GT(differing, 0);
}

// Lengths 6 and 10 run stages of 3 and 5 points over two columns; with zeros in the second column
// the first outputs are those of the stage. They are near those of the kernels 3 and 5 and not the
// same: the stage is binary32 throughout.
TEST(ComplexInputs, StagesOfThreeAndFiveRoundOtherwiseThanTheKernels) {
    for (const Direction direction : kBothDirections) {
        for (const int n : {3, 5}) {
            const ListedKernel* alone = complexKernel(direction, n, Precision::Single);
            const ListedKernel* inside = complexKernel(direction, 2 * n, Precision::Single);
            ASSERT_TRUE(alone && inside);
            std::vector<int> differing(static_cast<std::size_t>(n));
            std::mt19937 engine(static_cast<unsigned>(n));
            std::uniform_real_distribution<float> value(-1, 1);
            for (int i = 0; i < 1000; ++i) {
                Vector x(alone->srcCount), wide(inside->srcCount);
                for (std::size_t t = 0; t < x.size(); ++t)
                    x[t] = wide[t / 2 * 4 + t % 2] = value(engine);
                const Vector y = transform(*alone, x), z = transform(*inside, wide);
                for (std::size_t t = 0; t < y.size(); ++t) {
                    EXPECT_NEAR(y[t], z[t], 1e-6) << alone->name;
                    differing[t / 2] += y[t] != z[t];
                }
            }
            // Both forms of three points have the same first output.
            EXPECT_EQ(differing[0] > 0, n == 5) << alone->name;
            for (std::size_t k = 1; k < differing.size(); ++k)
                EXPECT_GT(differing[k], 0) << alone->name << ", output " << k;
        }
    }
}

// An infinity in a real part spreads to the imaginary one only where lanes are swapped: the first
// output of the binary64 kernels keeps a clean imaginary part.
TEST(ComplexInputs, DoubleKernelsKeepTheFirstImaginaryPartClean) {
    for (const int n : kLengths) {
        for (const Direction direction : kBothDirections) {
            const ListedKernel* k = complexKernel(direction, n, Precision::Double);
            ASSERT_NE(k, nullptr);
            std::vector<double> x(k->srcCount, 0.5);
            for (const double special : {HUGE_VAL, std::nan("")}) {
                x[0] = special;
                const std::vector<double> y = transform(*k, x);
                EXPECT_FALSE(std::isfinite(y[0])) << k->name;
                EXPECT_TRUE(std::isfinite(y[1])) << k->name;
            }
        }
    }
}

}  // namespace
}  // namespace orvgen::test
