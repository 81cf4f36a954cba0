// The Hartley flows by their bits.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <random>

#include "hartley/hartley.h"
#include "kernelgen/number.h"
#include "support/flow_rules.h"
#include "support/real_base_forms.h"

namespace orvgen::test {
namespace {

using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Number;
using realdft::PackedFormat;

template <class T>
constexpr Arithmetic arithmeticOf() {
    return sizeof(T) == 4 ? Arithmetic::Single : Arithmetic::Double;
}

template <class T>
std::vector<T> randomSamples(int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::vector<T> x(static_cast<std::size_t>(n));
    for (T& v : x) v = static_cast<T>(uniform(random));
    return x;
}

// Built once.
template <class T>
const Graph& flow(int n) {
    static std::map<int, Graph> built;
    auto place = built.find(n);
    if (place == built.end())
        place = built.emplace(n, hartley::hartleyGraph(n, arithmeticOf<T>())).first;
    return place->second;
}

template <class T>
std::vector<T> transform(const std::vector<T>& x, double scale) {
    return runGraph(flow<T>(static_cast<int>(x.size())), x, x.size(), scale);
}

template <class T>
bool sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T>
class HartleyBits : public testing::Test {};
using Elements = testing::Types<float, double>;
TYPED_TEST_SUITE(HartleyBits, Elements);

TYPED_TEST(HartleyBits, GraphAndPlainNumbersAgree) {
    using T = TypeParam;
    using Plain = Number<arithmeticOf<T>()>;
    for (int n = 2; n <= 64; ++n) {
        const double scale = scaleOf(Scaling::ByN, n, sizeof(T) == 4);
        for (unsigned seed = 0; seed < 4; ++seed) {
            const auto x = randomSamples<T>(n, seed);
            std::vector<Plain> plain;
            for (const T v : x) plain.emplace_back(static_cast<double>(v));
            std::vector<T> expected;
            for (const Plain& v : hartley::transform(n, plain))
                expected.push_back(static_cast<T>(scaledBy(scale, v).value()));
            EXPECT_TRUE(sameBits(transform(x, scale), expected)) << n;
        }
    }
}

template <class Rules>
bool agrees(int n, unsigned seed, double ruleScale, double graphScale) {
    const auto x = randomSamples<typename Rules::Sample>(n, seed);
    return sameBits(BaseForms<Rules>::hartley(x, ruleScale), transform(x, graphScale));
}

TYPED_TEST(HartleyBits, SmallLengthsAreTheirWrittenForms) {
    using T = TypeParam;
    using Rules = std::conditional_t<sizeof(T) == 4, Mixed, AllDouble>;
    for (const int n : {2, 3, 4, 5, 6, 7, 8, 11})
        for (const Scaling s : {Scaling::One, Scaling::ByN, Scaling::BySqrtN})
            for (unsigned seed = 0; seed < 20; ++seed) {
                const double scale = scaleOf(s, n, sizeof(T) == 4);
                EXPECT_TRUE(agrees<Rules>(n, seed, scale, scale)) << n << " seed " << seed;
            }
}

template <class Wrong>
bool noticed(int n, double ruleScale) {
    const double scale = scaleOf(Scaling::ByN, n, true);
    for (unsigned seed = 0; seed < 60; ++seed)
        if (!agrees<Wrong>(n, seed, ruleScale, scale)) return true;
    return false;
}

TEST(HartleyBits, WrongRoundingsWouldBeNoticed) {
    for (const int n : {3, 5, 6, 7, 8, 11}) {
        const double scale = scaleOf(Scaling::ByN, n, true);
        EXPECT_FALSE(noticed<Mixed>(n, scale)) << n;
        EXPECT_TRUE(noticed<FloatConstants>(n, scale)) << n;
        EXPECT_TRUE(noticed<MissingNarrowing>(n, scale)) << n;
        if (n != 8) {
            EXPECT_TRUE(noticed<DoubleScale>(n, 1.0 / n)) << n;
        }
        if (n == 5 || n == 7 || n == 11) {
            EXPECT_TRUE(noticed<RoundedProducts>(n, scale)) << n;
        }
    }
}

// H[k] is the sum of R[k] and -I[k], H[N-k] that of R[k] and I[k], in the type of the data.
TYPED_TEST(HartleyBits, SumsOfTheForwardTransform) {
    using T = TypeParam;
    int lengths = 0;
    for (int n = 2; n <= 64; ++n) {
        if (!hartley::runsForwardFlow(n)) continue;
        ++lengths;
        const Graph forward = realdft::forwardGraph(n, PackedFormat::Ccs, arithmeticOf<T>());
        for (unsigned seed = 0; seed < 10; ++seed) {
            const auto x = randomSamples<T>(n, seed);
            const auto X = runGraph(forward, x, static_cast<std::size_t>(n + 2), 1.0);
            const auto H = transform(x, 1.0);
            for (std::size_t k = 0; 2 * k <= x.size(); ++k) {
                const T R = X[2 * k];
                if (k == 0 || 2 * k == x.size()) {
                    EXPECT_EQ(H[k], R) << n;
                    continue;
                }
                const T I = X[2 * k + 1];
                EXPECT_EQ(H[k], R + (-I)) << n << " bin " << k;
                EXPECT_EQ(H[x.size() - k], R + I) << n << " bin " << k;
            }
        }
    }
    EXPECT_EQ(lengths, 28);
}

TYPED_TEST(HartleyBits, TwiceIsTheIdentity) {
    using T = TypeParam;
    const bool single = sizeof(T) == 4;
    const double u = single ? 0x1p-24 : 0x1p-53;
    for (int n = 2; n <= 64; ++n) {
        for (const auto& [first, second] :
             {std::pair{Scaling::One, Scaling::ByN}, std::pair{Scaling::ByN, Scaling::One},
              std::pair{Scaling::BySqrtN, Scaling::BySqrtN}}) {
            const auto x = randomSamples<T>(n, static_cast<unsigned>(n));
            const auto y =
                transform(transform(x, scaleOf(first, n, single)), scaleOf(second, n, single));
            double norm = 0, error = 0;
            for (std::size_t i = 0; i < x.size(); ++i) {
                norm += static_cast<double>(x[i]) * static_cast<double>(x[i]);
                const double d = static_cast<double>(x[i]) - static_cast<double>(y[i]);
                error += d * d;
            }
            EXPECT_LT(std::sqrt(error / norm), 8 * u) << n;
        }
    }
}

TYPED_TEST(HartleyBits, ImpulseGivesTheScaleEverywhere) {
    using T = TypeParam;
    for (int n = 2; n <= 64; ++n) {
        std::vector<T> x(static_cast<std::size_t>(n), T(0));
        x[0] = 1;
        for (const Scaling s : {Scaling::One, Scaling::ByN, Scaling::BySqrtN}) {
            const double scale = scaleOf(s, n, sizeof(T) == 4);
            for (const T v : transform(x, scale)) EXPECT_EQ(v, static_cast<T>(scale)) << n;
        }
    }
}

TYPED_TEST(HartleyBits, ZerosOfEitherSign) {
    using T = TypeParam;
    for (int n = 2; n <= 64; ++n) {
        const std::vector<T> zeros(static_cast<std::size_t>(n), T(0));
        for (const T v : transform(zeros, 1.0)) EXPECT_TRUE(v == 0 && !std::signbit(v)) << n;
        const std::vector<T> negative(static_cast<std::size_t>(n), -T(0));
        const auto H = transform(negative, 1.0);
        EXPECT_TRUE(H[0] == 0 && std::signbit(H[0])) << n;
        for (const T v : H) EXPECT_EQ(v, T(0)) << n;
    }
}

// At length 8 the difference of bin 3 is v - q: a zero of it keeps the sign of u - p.
TYPED_TEST(HartleyBits, EightPointsKeepTheSignOfAZero) {
    using T = TypeParam;
    std::vector<T> x(8, T(0));
    x[0] = -T(0);
    const auto H = transform(x, 1.0);
    EXPECT_TRUE(std::signbit(H[3]));   // (u - p) - (v - q) = -0 - (+0)
    EXPECT_FALSE(std::signbit(H[5]));  // (u - p) + (v - q) = -0 + (+0)
}

TYPED_TEST(HartleyBits, TwoPointsAreTheForwardTransform) {
    using T = TypeParam;
    const Graph forward = realdft::forwardGraph(2, PackedFormat::Pack, arithmeticOf<T>());
    for (const Scaling s : {Scaling::One, Scaling::ByN, Scaling::BySqrtN}) {
        const double scale = scaleOf(s, 2, sizeof(T) == 4);
        for (unsigned seed = 0; seed < 20; ++seed) {
            const auto x = randomSamples<T>(2, seed);
            EXPECT_TRUE(sameBits(transform(x, scale), runGraph(forward, x, 2, scale)));
        }
    }
}

}  // namespace
}  // namespace orvgen::test
