// SPDX-License-Identifier: MIT
// Whole lengths of the complex binary32 family, computed a second time from their formulas. The
// kernels give the same bits in all rounding modes, a NaN being as good as any other.
//
// 18, 50 and 54 are Good-Thomas of 2 and N/2 points with the two-point stage inside the odd part's:
// n = (N/2) n1 + 2 n2, n2 = c + M t with M = 3, 5, 3. So column c, c = 0 .. M-1, takes the
// R = N/M points x[(2 c + M m) mod N], m = 0 .. R-1; its row k has the twiddle
// exp(-+ 2 pi i c k / (N/2)), k = 0 .. R-1; the last stage takes the columns in the order c, and
// its output p is y[k + R q] where p = 2 q modulo M.
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cmath>

#include "complex/complex_calls.h"
#include "support/inputs.h"
#include "support/written_blocks.h"

namespace orvgen::test {
namespace {

using namespace written;

Numbers six(Sign sign, const Numbers& x) {  // 3, 2
    return goodThomas(
        3, 2, x, [&](const Numbers& z) { return three(sign, z); }, two);
}

Numbers ten(Sign sign, const Numbers& x) {  // 5, 2
    return goodThomas(
        5, 2, x, [&](const Numbers& z) { return five(sign, z); }, two);
}

// 3 T 3, the same twiddle in all lanes
Numbers nine(Sign sign, const Numbers& x) {
    Numbers u[3], y(9);
    for (std::size_t c = 0; c < 3; ++c) u[c] = three(sign, {x[c], x[c + 3], x[c + 6]});
    for (std::size_t k = 0; k < 3; ++k) {
        const Numbers out = three(sign, {u[0][k], rotated(root(sign, k, 9), u[1][k]),
                                         rotated(root(sign, 2 * k, 9), u[2][k])});
        for (std::size_t q = 0; q < 3; ++q) y[k + 3 * q] = out[q];
    }
    return y;
}

Numbers eighteen(Sign sign, const Numbers& x) {  // 2, 3 T 3
    return goodThomas(2, 9, x, two, [&](const Numbers& z) { return nine(sign, z); });
}

template <class Column>
Numbers twoInside(Sign sign, std::size_t M, const Numbers& x, const Column& column) {
    const std::size_t N = x.size(), R = N / M;
    std::vector<Numbers> v;
    for (std::size_t c = 0; c < M; ++c) {
        Numbers z;
        for (std::size_t m = 0; m < R; ++m) z.push_back(x[(2 * c + M * m) % N]);
        v.push_back(column(sign, z));
        for (std::size_t k = 0; k < R && c > 0; ++k)
            v[c][k] = twiddled(root(sign, c * k, N / 2), v[c][k]);
    }
    Numbers y(N);
    for (std::size_t k = 0; k < R; ++k) {
        Numbers row;
        for (const Numbers& rows : v) row.push_back(rows[k]);
        const Numbers out = butterfly(sign, row);
        for (std::size_t q = 0; q < M; ++q) y[k + R * q] = out[2 * q % M];
    }
    return y;
}

bool same(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

template <class Written>
void compare(int n, const Written& transformed) {
    for (const Sign sign : {Sign::Forward, Sign::Inverse}) {
        const ListedKernel* kernel = complexKernel(
            sign == Sign::Inverse ? Direction::Inverse : Direction::Forward, n, Precision::Single);
        ASSERT_NE(kernel, nullptr);
        for (const Input<float>& input : makeInputs<float>(kernel->srcCount, 8)) {
            Numbers x;
            for (std::size_t i = 0; i < input.values.size(); i += 2)
                x.push_back({input.values[i], input.values[i + 1]});
            for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
                std::fesetround(mode);
                const std::vector<float> y = transform(*kernel, input.values);
                const Numbers expected = transformed(sign, x);
                std::fesetround(FE_TONEAREST);
                ASSERT_EQ(y.size(), 2 * expected.size());
                std::size_t differing = 0;
                for (std::size_t k = 0; k < expected.size(); ++k)
                    differing +=
                        !same(y[2 * k], expected[k].re) || !same(y[2 * k + 1], expected[k].im);
                EXPECT_EQ(differing, 0U)
                    << kernel->name << ", " << input.name << ", rounding mode " << mode;
            }
        }
    }
}

TEST(WrittenComplexLengths, EighteenHasItsTwoInsideNine) {
    compare(18, [](Sign sign, const Numbers& x) { return twoInside(sign, 3, x, six); });
}

TEST(WrittenComplexLengths, FiftyHasItsTwoInsideTwentyFive) {
    compare(50, [](Sign sign, const Numbers& x) { return twoInside(sign, 5, x, ten); });
}

TEST(WrittenComplexLengths, FiftyFourHasItsTwoInsideTwentySeven) {
    compare(54, [](Sign sign, const Numbers& x) { return twoInside(sign, 3, x, eighteen); });
}

// The other joins, one length each: twiddles before and behind Good-Thomas, with rows that fill
// their lanes and rows that do not.
auto blocks(Sign sign) {
    return [sign](const Numbers& z) { return butterfly(sign, z); };
}
auto blocks(Sign sign, std::size_t R, std::size_t M) {
    return [=](const Numbers& z) { return goodThomas(R, M, z, blocks(sign), blocks(sign)); };
}

TEST(WrittenComplexLengths, TwentyFourIsFourThenThreeAndTwo) {
    compare(24, [](Sign sign, const Numbers& x) {
        return cooleyTukey(sign, 4, 6, x, blocks(sign), blocks(sign, 3, 2));
    });
}

TEST(WrittenComplexLengths, FortyFiveIsFiveAndThreeThenThree) {
    compare(45, [](Sign sign, const Numbers& x) {
        return cooleyTukey(sign, 15, 3, x, blocks(sign, 5, 3), blocks(sign));
    });
}

TEST(WrittenComplexLengths, FortyEightIsFourThenThreeAndFour) {
    compare(48, [](Sign sign, const Numbers& x) {
        return cooleyTukey(sign, 4, 12, x, blocks(sign), blocks(sign, 3, 4));
    });
}

TEST(WrittenComplexLengths, FiftySixIsSevenAndTwoThenFour) {
    compare(56, [](Sign sign, const Numbers& x) {
        return cooleyTukey(sign, 14, 4, x, blocks(sign, 7, 2), blocks(sign));
    });
}

}  // namespace
}  // namespace orvgen::test
