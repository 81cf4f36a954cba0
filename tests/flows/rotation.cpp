// SPDX-License-Identifier: MIT
// Rotations against the formulas, written down for each octant, in all rounding modes.
#include "flows/rotation.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>

#include "support/flow_runs.h"

namespace orvgen::test {
namespace {

template <class T>
struct Turned {
    T re, im;
};

// Products with a constant of binary64, and expressions of two of them, rounded once.
template <class T>
T rounded(double expression) {
    return static_cast<T>(expression);
}

// z exp(2 pi i k/8)
template <class T>
Turned<T> byOctants(int k, T re, T im) {
    constexpr double root = 0.70710678118654757;
    const T p = rounded<T>(root * static_cast<double>(re));
    const T r = rounded<T>(root * static_cast<double>(im));
    switch (k) {
        case 0:
            return {re, im};
        case 1:
            return {p - r, r + p};
        case 2:
            return {-im, re};
        case 3:
            return {-(r + p), p - r};
        case 4:
            return {-re, -im};
        case 5:
            return {r - p, -(p + r)};
        case 6:
            return {im, -re};
        default:
            return {p + r, r - p};
    }
}

// By an angle inside a quadrant: c and s are magnitudes, a minus in front of both terms stands in
// front of their sum.
template <class T>
Turned<T> inQuadrant(int quadrant, double c, double s, T re, T im) {
    const double a = static_cast<double>(re), b = static_cast<double>(im);
    switch (quadrant) {
        case 0:
            return {rounded<T>(c * a - s * b), rounded<T>(c * b + s * a)};
        case 1:
            return {-rounded<T>(c * a + s * b), rounded<T>(s * a - c * b)};
        case 2:
            return {rounded<T>(s * b - c * a), -rounded<T>(c * b + s * a)};
        default:
            return {rounded<T>(c * a + s * b), rounded<T>(c * b - s * a)};
    }
}

template <class T>
Turned<T> rotated(T re, T im, long num, long den) {
    using V = PlainNumber<T>;
    const flows::Bin<V> z{V(static_cast<double>(re)), V(static_cast<double>(im))};
    const flows::Bin<V> y = flows::rotate(z, num, den);
    return {static_cast<T>(narrow(y.re).value()), static_cast<T>(narrow(y.im).value())};
}

template <class T>
class RotationByAnyAngle : public testing::Test {
  protected:
    template <class Check>
    static void everywhere(Check check) {
        for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
            for (unsigned seed = 0; seed < 60; ++seed) {
                const std::vector<T> z =
                    seed < 40 ? randomValues<T>(2, seed) : signedUnits<T>(2, seed);
                std::fesetround(mode);
                const std::string failure = check(z[0], z[1]);
                std::fesetround(FE_TONEAREST);
                ASSERT_EQ(failure, "") << "rounding mode " << mode << ", " << z[0] << ", " << z[1];
            }
        }
    }
    static std::string difference(const Turned<T>& found, const Turned<T>& expected, long num,
                                  long den) {
        if (sameBits(found.re, expected.re) && sameBits(found.im, expected.im)) return "";
        return "by " + std::to_string(num) + "/" + std::to_string(den);
    }
};
TYPED_TEST_SUITE(RotationByAnyAngle, Elements);

TYPED_TEST(RotationByAnyAngle, ReachesEachOctant) {
    for (const long den : {8L, 16L, 24L, 64L}) {
        TestFixture::everywhere([&](TypeParam re, TypeParam im) -> std::string {
            for (int k = -8; k < 16; ++k) {
                const long num = k * den / 8;
                const std::string failure = TestFixture::difference(
                    rotated(re, im, num, den), byOctants((k + 8) % 8, re, im), num, den);
                if (!failure.empty()) return failure;
            }
            return "";
        });
    }
}

TYPED_TEST(RotationByAnyAngle, StaysInsideEachQuadrant) {
    for (const long den : {3L, 5L, 9L, 16L, 45L}) {
        std::vector<double> c, s;
        for (long num = 0; num < den; ++num) {
            c.push_back(magnitudeOf(num, den, false));
            s.push_back(magnitudeOf(num, den, true));
        }
        TestFixture::everywhere([&](TypeParam re, TypeParam im) -> std::string {
            for (long num = 1; num < den; ++num) {
                if (8 * num % den == 0) continue;
                const auto n = static_cast<std::size_t>(num);
                const Turned<TypeParam> expected =
                    inQuadrant(static_cast<int>(4 * num / den), c[n], s[n], re, im);
                const std::string failure =
                    TestFixture::difference(rotated(re, im, num, den), expected, num, den);
                if (!failure.empty()) return failure;
            }
            return "";
        });
    }
}

}  // namespace
}  // namespace orvgen::test
