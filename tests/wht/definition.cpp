// SPDX-License-Identifier: MIT
// What the transform is: the matrix in natural order, its inverse, its scales.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "memory.h"
#include "reference.h"
#include "wht/functions.h"

namespace {

using namespace orvgen::test;

template <class T>
struct Definition : testing::Test {
    // One call on aligned arrays with a buffer of its own; fails the test on a bad status.
    static void run(const OrderFunctions<T>& f, const T* src, T* dst, std::int32_t flag) {
        static const AlignedArray<std::uint8_t> buffer(1 << 17);
        ASSERT_EQ(f.kernel(src, dst, flag, buffer.data()), orvOk) << f.name;
    }
};

using Reals = testing::Types<Orv32f, Orv64f>;
TYPED_TEST_SUITE(Definition, Reals);

TYPED_TEST(Definition, HasTheRowsOfOrderThree) {
    const OrderFunctions<TypeParam>& f = orderFunctions<TypeParam>()[2];
    ASSERT_EQ(f.order, 3);
    const DataTable& table = dataTable("wht_signs");
    ASSERT_EQ(table.rows().size(), 8U);
    for (const DataRow& row : table.rows()) {
        const std::string& signs = row.text("signs");
        ASSERT_EQ(signs.size(), 8U);
        for (std::size_t j = 0; j < 8; ++j) {
            const AlignedArray<TypeParam> x(8), y(8);
            for (std::size_t i = 0; i < 8; ++i) x[i] = i == j ? TypeParam{1} : TypeParam{0};
            this->run(f, x.data(), y.data(), orvScaleNone);
            EXPECT_EQ(y[static_cast<std::size_t>(row.integer("row"))], signs[j] == '+' ? 1 : -1)
                << "row " << row.integer("row") << ", column " << j;
        }
    }
}

// The unit vector at j gives row j: (-1)^popcount(i & j).
TYPED_TEST(Definition, UnitVectorsGiveRows) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        const std::size_t n = f.points();
        const AlignedArray<TypeParam> x(n), y(n);
        for (std::size_t i = 0; i < n; ++i) x[i] = 0;
        for (std::size_t j = 0; j < n; ++j) {
            x[j] = 1;
            this->run(f, x.data(), y.data(), orvScaleNone);
            x[j] = 0;
            std::size_t wrong = 0;
            for (std::size_t i = 0; i < n; ++i)
                wrong += y[i] != static_cast<TypeParam>(1 - 2 * (std::popcount(i & j) & 1));
            ASSERT_EQ(wrong, 0U) << f.name << ", unit vector " << j;
        }
    }
}

TYPED_TEST(Definition, OnesGiveOneElement) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        const std::size_t n = f.points();
        const AlignedArray<TypeParam> x(n), y(n);
        for (std::size_t i = 0; i < n; ++i) x[i] = 1;
        this->run(f, x.data(), y.data(), orvScaleNone);
        EXPECT_EQ(y[0], static_cast<TypeParam>(n)) << f.name;
        for (std::size_t i = 1; i < n; ++i)
            ASSERT_TRUE(y[i] == 0 && !std::signbit(y[i])) << f.name << ", element " << i;
    }
}

// Unscaled and then by 1/N, small integers come back exactly: the second transform undoes the first
// one bit by bit, so that after b of its layers the values are 2^b times those of a transform over
// the other bits, and never need more than k + 2 bits.
TYPED_TEST(Definition, TwiceIsTheIdentityOnIntegers) {
    for (const std::int32_t byN : {orvScaleFwdByN, orvScaleInvByN}) {
        for (const auto& f : orderFunctions<TypeParam>()) {
            const std::size_t n = f.points();
            const AlignedArray<TypeParam> x(n), y(n);
            const std::vector<TypeParam> values = randomValues<TypeParam>(n);
            for (std::size_t i = 0; i < n; ++i)
                x[i] = std::round(values[i] * TypeParam{2}) + TypeParam{0};
            this->run(f, x.data(), y.data(), orvScaleNone);
            this->run(f, y.data(), y.data(), byN);
            for (std::size_t i = 0; i < n; ++i)
                ASSERT_EQ(x[i], y[i]) << f.name << ", element " << i;
        }
    }
}

// Each layer is sqrt(2) times an orthogonal map and rounds each element once, so that the error of
// k layers is at most k u, of both transforms and their scales (2 k + 2) u, in the 2-norm.
TYPED_TEST(Definition, TwiceIsTheIdentityUpToRounding) {
    constexpr auto u = static_cast<double>(std::numeric_limits<TypeParam>::epsilon()) / 2;
    for (const auto& f : orderFunctions<TypeParam>()) {
        const std::size_t n = f.points();
        const AlignedArray<TypeParam> x(n), y(n);
        const std::vector<TypeParam> values = randomValues<TypeParam>(n, 5);
        for (std::size_t i = 0; i < n; ++i) x[i] = values[i];
        for (const auto& [first, second] : {std::pair{orvScaleNone, orvScaleFwdByN},
                                            std::pair{orvScaleBySqrtN, orvScaleBySqrtN}}) {
            this->run(f, x.data(), y.data(), first);
            this->run(f, y.data(), y.data(), second);
            double error = 0, size = 0;
            for (std::size_t i = 0; i < n; ++i) {
                error += std::pow(static_cast<double>(y[i]) - static_cast<double>(x[i]), 2);
                size += std::pow(static_cast<double>(x[i]), 2);
            }
            // The stored 1/sqrt(N) adds at most two roundings to each transform.
            EXPECT_LE(std::sqrt(error / size), (2 * f.order + 7) * u) << f.name;
        }
    }
}

TYPED_TEST(Definition, BothFlagsByNAreAlike) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        const std::size_t n = f.points();
        const AlignedArray<TypeParam> x(n), none(n), y1(n), y2(n);
        const std::vector<TypeParam> values = randomValues<TypeParam>(n, 7);
        for (std::size_t i = 0; i < n; ++i) x[i] = values[i];
        this->run(f, x.data(), none.data(), orvScaleNone);
        this->run(f, x.data(), y1.data(), orvScaleFwdByN);
        this->run(f, x.data(), y2.data(), orvScaleInvByN);
        EXPECT_TRUE(sameBytes(y1.data(), y2.data(), n)) << f.name;
        for (std::size_t i = 0; i < n; ++i)
            ASSERT_EQ(y1[i], std::ldexp(none[i], -f.order)) << f.name << ", element " << i;
    }
}

// At even orders 1/sqrt(N) is a power of two.
TYPED_TEST(Definition, RootScaleOfEvenOrdersIsExact) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        if (f.order % 2 != 0) continue;
        const std::size_t n = f.points();
        const AlignedArray<TypeParam> x(n), none(n), y(n);
        const std::vector<TypeParam> values = randomValues<TypeParam>(n, 9);
        for (std::size_t i = 0; i < n; ++i) x[i] = values[i];
        this->run(f, x.data(), none.data(), orvScaleNone);
        this->run(f, x.data(), y.data(), orvScaleBySqrtN);
        for (std::size_t i = 0; i < n; ++i)
            ASSERT_EQ(y[i], std::ldexp(none[i], -f.order / 2)) << f.name << ", element " << i;
    }
}

// The unit vector at 0 shows the stored scale in every element.
TYPED_TEST(Definition, HasTheStoredRootScales) {
    ASSERT_EQ(dataTable("wht_root_scales").rows().size(), 13U);
    for (const auto& f : orderFunctions<TypeParam>()) {
        const std::size_t n = f.points();
        const AlignedArray<TypeParam> x(n), y(n);
        for (std::size_t i = 0; i < n; ++i) x[i] = i == 0;
        this->run(f, x.data(), y.data(), orvScaleBySqrtN);
        const TypeParam scale = scaleOf<TypeParam>(f.order, orvScaleBySqrtN);
        for (std::size_t i = 0; i < n; ++i)
            ASSERT_TRUE(sameBytes(&y[i], &scale, 1)) << f.name << ", element " << i;
        EXPECT_NEAR(static_cast<double>(scale), std::pow(2.0, -f.order / 2.0),
                    static_cast<double>(std::numeric_limits<TypeParam>::epsilon()) * scale);
    }
}

}  // namespace
