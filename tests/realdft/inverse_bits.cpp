// The inverse real flows by their bits: against the same algorithms on plain numbers, against the
// forms of the smallest lengths written down by hand, and from format to format.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <map>
#include <random>

#include "kernelgen/number.h"
#include "realdft/forward.h"
#include "realdft/inverse.h"
#include "support/data_table.h"
#include "support/flow_rules.h"
#include "support/packed_format.h"
#include "support/real_base_forms.h"

namespace orvgen::test {
namespace {

using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Number;
using realdft::inverseGraph;
using realdft::kPackedFormats;
using Format = realdft::PackedFormat;

template <class T>
constexpr Arithmetic arithmeticOf() {
    return sizeof(T) == 4 ? Arithmetic::Single : Arithmetic::Double;
}

template <class T>
std::vector<T> randomValues(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::vector<T> x(static_cast<std::size_t>(count));
    for (T& v : x) v = static_cast<T>(uniform(random));
    return x;
}

// A half spectrum in a packed layout.
template <class T>
std::vector<T> packed(const HalfSpectrum<T>& X, int n, Format format) {
    std::vector<T> a(static_cast<std::size_t>(realdft::elementCount(format, n)));
    for (int k = 0; 2 * k <= n; ++k) {
        const auto i = static_cast<std::size_t>(k);
        a[static_cast<std::size_t>(realdft::realPosition(format, n, k))] = X.re[i];
        if (k > 0 && 2 * k < n)
            a[static_cast<std::size_t>(realdft::imaginaryPosition(format, n, k))] = X.im[i];
    }
    return a;
}

template <class T>
HalfSpectrum<T> randomSpectrum(int n, unsigned seed) {
    return {randomValues<T>(n / 2 + 1, 2 * seed), randomValues<T>(n / 2 + 1, 2 * seed + 1)};
}

// Built once.
template <class T>
const Graph& flow(int n, Format format) {
    static std::map<std::pair<int, Format>, Graph> built;
    auto place = built.find({n, format});
    if (place == built.end())
        place =
            built.emplace(std::pair{n, format}, inverseGraph(n, format, arithmeticOf<T>())).first;
    return place->second;
}

template <class T>
std::vector<T> invert(int n, Format format, const std::vector<T>& src, double scale) {
    return runGraph(flow<T>(n, format), src, static_cast<std::size_t>(n), scale);
}

template <class T>
bool sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T>
class InverseBits : public testing::Test {};
using Elements = testing::Types<float, double>;
TYPED_TEST_SUITE(InverseBits, Elements);

TYPED_TEST(InverseBits, GraphAndPlainNumbersAgree) {
    using T = TypeParam;
    using Plain = Number<arithmeticOf<T>()>;
    for (int n = 2; n <= 64; ++n) {
        const double scale = scaleOf(Scaling::ByN, n, sizeof(T) == 4);
        for (const Format format : kPackedFormats) {
            const Graph& g = flow<T>(n, format);
            for (unsigned seed = 0; seed < 4; ++seed) {
                const auto src = packed(randomSpectrum<T>(n, seed), n, format);
                const auto bins = realdft::packedBins<Plain>(n, format, [&](int i) {
                    return Plain(static_cast<double>(src[static_cast<std::size_t>(i)]));
                });
                const auto y =
                    realdft::inverseSamples(realdft::inverseArrangement(n, format), bins);
                std::vector<T> expected;
                for (const Plain& v : y)
                    expected.push_back(static_cast<T>(scaledBy(scale, v).value()));
                EXPECT_TRUE(sameBits(runGraph(g, src, expected.size(), scale), expected)) << n;
            }
        }
    }
}

// ---- the hand-written forms ----

template <class Rules>
bool agrees(int n, Format format, unsigned seed, double ruleScale, double graphScale) {
    using T = typename Rules::Sample;
    const auto X = randomSpectrum<T>(n, seed);
    return BaseForms<Rules>::inverse(X, n, ruleScale, format == Format::Ccs) ==
           invert<T>(n, format, packed(X, n, format), graphScale);
}

TYPED_TEST(InverseBits, SmallLengthsAreTheirWrittenForms) {
    using T = TypeParam;
    using Rules = std::conditional_t<sizeof(T) == 4, Mixed, AllDouble>;
    for (const int n : {2, 3, 4, 5, 6, 7, 8})
        for (const Format format : kPackedFormats)
            for (const Scaling s : {Scaling::One, Scaling::ByN, Scaling::BySqrtN})
                for (unsigned seed = 0; seed < 20; ++seed) {
                    const double scale = scaleOf(s, n, sizeof(T) == 4);
                    EXPECT_TRUE(agrees<Rules>(n, format, seed, scale, scale))
                        << n << " " << realdft::formatName(format) << " seed " << seed;
                }
}

// Whether the flow differs from forms with one rule broken: what the comparison above would notice.
template <class Wrong>
bool noticed(int n, double ruleScale) {
    const double scale = scaleOf(Scaling::ByN, n, true);
    for (unsigned seed = 0; seed < 60; ++seed)
        if (!agrees<Wrong>(n, Format::Ccs, seed, ruleScale, scale)) return true;
    return false;
}

TEST(InverseBits, WrongRoundingsWouldBeNoticed) {
    for (const int n : {3, 5, 6, 7, 8}) {
        const double scale = scaleOf(Scaling::ByN, n, true);
        EXPECT_FALSE(noticed<Mixed>(n, scale)) << n;
        EXPECT_TRUE(noticed<FloatConstants>(n, scale)) << n;
        EXPECT_TRUE(noticed<MissingNarrowing>(n, scale)) << n;
        if (n == 5 || n == 7) {
            EXPECT_TRUE(noticed<RoundedProducts>(n, scale)) << n;
        }
        if (n != 8) {
            EXPECT_TRUE(noticed<DoubleScale>(n, 1.0 / n)) << n;
        }
    }
}

TEST(InverseBits, SevenPointCosineOfOneConstant) {
    // every binary64 block of length 7 stores the same |cos(4 pi/7)|
    int found = 0;
    for (int n = 7; n <= 63; n += 7) {
        for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
            const Graph g = inverseGraph(n, Format::Ccs, arithmetic);
            for (const kernelgen::Node& node : g.nodes()) {
                if (node.op != kernelgen::Op::Mul) continue;
                const double c = g.constant(node).lane(0).asDouble();
                if (c < 0.2225209339563140 || c > 0.2225209339563150) continue;
                EXPECT_EQ(c, 0.22252093395631434) << n;
                ++found;
            }
        }
    }
    EXPECT_GE(found, 2 * 9 * 3);
}

// ---- the formats ----

TYPED_TEST(InverseBits, FormatsRunOneFlowButFromCcsAt7And49) {
    using T = TypeParam;
    for (int n = 2; n <= 64; ++n) {
        bool packDiffers = false, permDiffers = false;
        for (unsigned seed = 0; seed < 20; ++seed) {
            const auto X = randomSpectrum<T>(n, seed);
            const double scale = scaleOf(Scaling::BySqrtN, n, sizeof(T) == 4);
            const auto ccs = invert<T>(n, Format::Ccs, packed(X, n, Format::Ccs), scale);
            const auto pack = invert<T>(n, Format::Pack, packed(X, n, Format::Pack), scale);
            const auto perm = invert<T>(n, Format::Perm, packed(X, n, Format::Perm), scale);
            EXPECT_TRUE(sameBits(pack, perm)) << n;
            packDiffers = packDiffers || !sameBits(ccs, pack);
            permDiffers = permDiffers || !sameBits(ccs, perm);
        }
        const DataRow* row = dataTable("real_inverse_formats").find("length", n);
        const bool mayDiffer =
            row != nullptr && row->text(sizeof(T) == 4 ? "f32" : "f64") == "ccs|pack perm";
        if (n == 7 || n == 49) {
            ASSERT_TRUE(mayDiffer);
        }
        EXPECT_EQ(packDiffers, n == 7 || n == 49) << n;
        EXPECT_EQ(permDiffers, n == 7 || n == 49) << n;
    }
}

// ---- round trips and edges ----

template <class T>
std::vector<T> forwardThenBack(int n, Format format, const std::vector<T>& x, Scaling there,
                               Scaling back) {
    const bool single = sizeof(T) == 4;
    const auto spectrum = runGraph(realdft::forwardGraph(n, format, arithmeticOf<T>()), x,
                                   static_cast<std::size_t>(realdft::elementCount(format, n)),
                                   scaleOf(there, n, single));
    return invert<T>(n, format, spectrum, scaleOf(back, n, single));
}

TYPED_TEST(InverseBits, ForwardAndBackIsTheIdentity) {
    using T = TypeParam;
    const double u = sizeof(T) == 4 ? 0x1p-24 : 0x1p-53;
    const std::pair<Scaling, Scaling> pairs[] = {{Scaling::ByN, Scaling::One},
                                                 {Scaling::One, Scaling::ByN},
                                                 {Scaling::BySqrtN, Scaling::BySqrtN}};
    for (int n = 2; n <= 64; ++n) {
        for (const Format format : kPackedFormats) {
            for (const auto& [there, back] : pairs) {
                const auto x = randomValues<T>(n, static_cast<unsigned>(n));
                const auto y = forwardThenBack<T>(n, format, x, there, back);
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
}

TEST(InverseBits, RoundTripsOfLengths4And6) {
    for (const Format format : kPackedFormats) {
        EXPECT_EQ((forwardThenBack<float>(4, format, {1, 2, 3, 4}, Scaling::One, Scaling::ByN)),
                  (std::vector<float>{1, 2, 3, 4}));
        EXPECT_EQ(
            (forwardThenBack<float>(6, format, {1, 2, 3, 4, 5, 7}, Scaling::One, Scaling::ByN)),
            (std::vector<float>{1, 1.9999998807907104F, 3, 4, 5, 7}));
    }
}

TYPED_TEST(InverseBits, IgnoredElementsOfCcsChangeNothing) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    const T infinity = std::numeric_limits<T>::infinity();
    for (int n = 2; n <= 64; ++n) {
        auto src = packed(randomSpectrum<T>(n, 3), n, Format::Ccs);
        const auto expected = invert<T>(n, Format::Ccs, src, 1.0);
        src[1] = nan;
        if (n % 2 == 0) src[static_cast<std::size_t>(n + 1)] = infinity;
        EXPECT_TRUE(sameBits(invert<T>(n, Format::Ccs, src, 1.0), expected)) << n;
        if (n % 2 == 0) {  // N + 1 elements suffice
            src.resize(static_cast<std::size_t>(n + 1));
            EXPECT_TRUE(sameBits(invert<T>(n, Format::Ccs, src, 1.0), expected)) << n;
        }
    }
}

TEST(InverseBits, DoublingOverflowsFirst) {
    // 2 R[1] is above the largest binary32 number, though y = R[1]/N fits
    for (int n = 3; n <= 64; ++n) {
        std::vector<float> src(static_cast<std::size_t>(n), 0.0F);
        src[1] = 1.8e38F;  // R[1] in Pack
        const auto y = invert<float>(n, Format::Pack, src, scaleOf(Scaling::ByN, n, true));
        EXPECT_FALSE(std::isfinite(y[0])) << n;
        src[1] = 1.6e38F;
        EXPECT_TRUE(
            std::isfinite(invert<float>(n, Format::Pack, src, scaleOf(Scaling::ByN, n, true))[0]))
            << n;
    }
    // at length 3 the doubling of I[1] is in the constant: 1.73 I[1] still fits
    const auto y = invert<float>(3, Format::Pack, {0, 0, 1.8e38F}, 1.0);
    EXPECT_TRUE(std::isfinite(y[1]));
    EXPECT_TRUE(std::isfinite(y[2]));
}

TEST(InverseBits, SmallestLengthsReadWhatTheyStore) {
    using List = std::vector<int>;
    const auto read = [](int n, Format f) {
        return elementsRead(inverseGraph(n, f, Arithmetic::Single));
    };
    EXPECT_EQ(read(2, Format::Ccs), (List{0, 2}));
    EXPECT_EQ(read(2, Format::Pack), (List{0, 1}));
    EXPECT_EQ(read(2, Format::Perm), (List{0, 1}));
    EXPECT_EQ(read(3, Format::Ccs), (List{0, 2, 3}));
}

// Every element that is read reaches an output.
TYPED_TEST(InverseBits, EveryElementReadCounts) {
    using T = TypeParam;
    for (int n = 2; n <= 64; ++n) {
        for (const Format format : kPackedFormats) {
            const Graph& g = flow<T>(n, format);
            for (const int i : elementsRead(g)) {
                std::vector<T> src(static_cast<std::size_t>(realdft::elementCount(format, n)),
                                   T(0));
                src[static_cast<std::size_t>(i)] = 1;
                bool reaches = false;
                for (const T v : runGraph(g, src, static_cast<std::size_t>(n), 1.0))
                    reaches = reaches || (v > T(0.01) || v < T(-0.01));
                EXPECT_TRUE(reaches) << n << " element " << i;
            }
        }
    }
}

}  // namespace
}  // namespace orvgen::test
