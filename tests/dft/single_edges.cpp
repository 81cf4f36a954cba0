// Inputs with known outcomes: impulses, all ones, NaN, what lies behind src.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "dft/families.h"
#include "dft/rader.h"
#include "kernelgen/evaluate.h"
#include "support/data_table.h"

namespace orvgen {
namespace {

using Signal = std::vector<float>;
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// Both directions at one length.
std::vector<Signal> outputs(long n, Signal x, float behind = 0) {
    x.resize(2 * static_cast<std::size_t>(n));
    x.insert(x.end(), {behind, behind});
    std::vector<Signal> results;
    for (const auto& family : dft::complexSingleFamilies()) {
        results.emplace_back(2 * static_cast<std::size_t>(n));
        kernelgen::evaluate(family.kernel(static_cast<int>(n)).flow, x.data(),
                            results.back().data(), 1.0);
    }
    return results;
}

Signal constant(long n) {
    Signal x;
    for (long i = 0; i < n; ++i) x.insert(x.end(), {1, 0});
    return x;
}

TEST(SingleEdges, AnImpulseGivesExactOnesAtRaderLengths) {
    for (const long n : test::dataTable("complex_f32_rader").list("length"))
        for (const Signal& y : outputs(n, {1}))
            for (std::size_t i = 0; i < y.size(); ++i)
                EXPECT_EQ(y[i], i % 2 == 0 ? 1.0F : 0.0F) << n << " " << i;
}

TEST(SingleEdges, AllOnesGiveExactZerosWhereListed) {
    std::vector<long> lengths = test::dataTable("complex_f32_all_ones").list("length");
    lengths.push_back(3);
    for (const long n : lengths)
        for (const Signal& y : outputs(n, constant(n)))
            for (std::size_t i = 0; i < y.size(); ++i)
                EXPECT_EQ(y[i], i == 0 ? static_cast<float>(n) : 0.0F) << n << " " << i;
}

TEST(SingleEdges, BluesteinLengthsAreNotExactButNear) {
    for (const long n : test::dataTable("complex_f32_bluestein").list("length")) {
        for (const Signal& x : {Signal{1}, constant(n)}) {
            const bool impulse = x.size() == 1;
            for (const Signal& y : outputs(n, x)) {
                float worst = 0;
                for (std::size_t i = 0; i < y.size(); ++i) {
                    const float exact = impulse ? (i % 2 == 0 ? 1.0F : 0.0F)
                                                : (i == 0 ? static_cast<float>(n) : 0.0F);
                    worst = std::max(worst, std::abs(y[i] - exact));
                }
                EXPECT_GT(worst, 0.0F) << n;
                EXPECT_LE(worst, impulse ? 4e-7F : 4e-6F) << n;
            }
        }
    }
}

TEST(SingleEdges, AnImpulseAtOneGivesTheRootsInOrder) {
    for (const Signal& y : outputs(15, {0, 0, 1}))
        for (std::size_t k = 0; k < 15; ++k)
            EXPECT_NEAR(y[2 * k], std::cos(2 * M_PI * static_cast<double>(k) / 15), 1e-6);
}

TEST(SingleEdges, ANaNReachesWhatIsListed) {
    for (const auto& row : test::dataTable("complex_f32_nan_reach").rows()) {
        const long n = row.integer("length");
        Signal x = constant(n);
        x[2 * static_cast<std::size_t>(row.integer("element"))] = nan;
        for (const Signal& y : outputs(n, x)) {
            long parts = 0, imaginary = 0;
            for (std::size_t i = 0; i < y.size(); ++i)
                if (std::isnan(y[i])) {
                    ++parts;
                    imaginary += static_cast<long>(i % 2);
                }
            EXPECT_GT(parts, 0) << n;
            if (!row.empty("parts")) {
                EXPECT_EQ(parts, row.integer("parts")) << n;
            }
            EXPECT_EQ(imaginary == 0, row.flag("real_only")) << n;
        }
    }
}

TEST(SingleEdges, FiniteNumbersBehindSrcChangeNothing) {
    for (const long n : test::dataTable("complex_f32_bluestein").list("length")) {
        Signal x;
        for (long i = 0; i < 2 * n; ++i) x.push_back(static_cast<float>(i % 7) - 2.5F);
        const auto expected = outputs(n, x);
        for (const float behind : {1.0F, -3e38F, 1e-42F})
            EXPECT_EQ(outputs(n, x, behind), expected);
        for (const Signal& y : outputs(n, x, nan))
            for (const float part : y) EXPECT_TRUE(std::isnan(part));
    }
}

// An infinity in the real part of x[1], column 1 of the first join: every row k of the column
// becomes (inf, finite). The twiddle of row 0 is 1 and multiplied like any other, 0 times infinity
// makes its imaginary part a NaN; at 8 the twiddle -i of row 2 does so to the real part. Other rows
// become (inf, -+inf). The second stage turns the row's quarter q mod 4 = 1 and 3 by a quarter at
// 16; at 32 and 64 it turns by q mod 4 eighths, which adds both parts of the number for odd q.
bool expectNaN(long n, std::size_t k, bool imaginary) {
    const std::size_t R = n == 64 ? 8 : 4;
    const std::size_t row = k % R, q = k / R % 4;
    if (n == 8) return row == 0 ? imaginary : row == 2 && !imaginary;
    if (n == 16) return row == 0 && imaginary == (q % 2 == 0);
    if (q % 2 == 0) return row == 0 && imaginary == (q == 0);
    return row == 0 || imaginary == (q == 3);
}

TEST(SingleEdges, AnInfinityThroughATrivialTwiddleIsANaN) {
    for (const long n : {8, 16, 32, 64}) {
        Signal x = constant(n);
        x[2] = std::numeric_limits<float>::infinity();
        for (const Signal& y : outputs(n, x))
            for (std::size_t i = 0; i < y.size(); ++i)
                EXPECT_EQ(std::isnan(y[i]), expectNaN(n, i / 2, i % 2 == 1)) << n << " " << i;
    }
    // Column 0 has no twiddles.
    Signal x = constant(8);
    x[0] = std::numeric_limits<float>::infinity();
    for (const Signal& y : outputs(8, x))
        for (std::size_t i = 0; i < y.size(); ++i) EXPECT_EQ(std::isinf(y[i]), i % 2 == 0) << i;
}

TEST(SingleEdges, RaderConstantsAreThoseStated) {
    const auto B = dft::raderConstants(flows::Direction::Forward, 7);
    for (const auto& row : test::dataTable("rader7_constants").rows()) {
        const auto k = static_cast<std::size_t>(row.integer("k"));
        EXPECT_NEAR(B[k].re.asDouble(), row.number("re"), 5.1e-8);
        EXPECT_NEAR(B[k].im.asDouble(), row.number("im"), 5.1e-8);
    }
    for (const long p : test::dataTable("complex_f32_rader").list("length")) {
        const auto C = dft::raderConstants(flows::Direction::Forward, static_cast<std::size_t>(p));
        const auto L = static_cast<double>(p - 1);
        EXPECT_EQ(C[0].re.asDouble(), -1 / L);
        EXPECT_TRUE(C[0].im.isZero());
        const auto& middle = C[static_cast<std::size_t>(p - 1) / 2];
        EXPECT_TRUE(p % 4 == 1 ? middle.im.isZero() : middle.re.isZero());
        for (std::size_t k = 1; k < C.size(); ++k)
            EXPECT_NEAR(std::hypot(C[k].re.asDouble(), C[k].im.asDouble()),
                        std::sqrt(static_cast<double>(p)) / L, 1e-15);
    }
}

}  // namespace
}  // namespace orvgen
