// SPDX-License-Identifier: MIT
// The inverse real flows by their bits: against the same algorithms on plain numbers, against the
// forms of the smallest lengths written down by hand, and from format to format.
#include <limits>

#include "realdft/forward.h"
#include "realdft/inverse.h"
#include "support/data_table.h"
#include "support/flow_runs.h"
#include "support/proof.h"

namespace orvgen::test {
namespace {

using kernelgen::Arithmetic;
using kernelgen::Graph;
using realdft::inverseGraph;
using realdft::kPackedFormats;
using Format = realdft::PackedFormat;

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

template <class T>
const Graph& flow(int n, Format format) {
    static Graphs<int, Format> flows(
        [](int length, Format f) { return inverseGraph(length, f, arithmeticOf<T>); });
    return flows(n, format);
}

template <class T>
std::vector<T> invert(int n, Format format, const std::vector<T>& src, double scale) {
    return runGraph(flow<T>(n, format), src, static_cast<std::size_t>(n), scale);
}

template <class T>
class InverseBits : public testing::Test {};
TYPED_TEST_SUITE(InverseBits, Elements);

TYPED_TEST(InverseBits, GraphAndPlainNumbersAgree) {
    using T = TypeParam;
    for (const int n : kLengths) {
        const double scale = scaleOf(Scaling::ByN, n, isSingle<T>);
        for (const Format format : kPackedFormats) {
            for (unsigned seed = 0; seed < 4; ++seed) {
                const auto src = packed(randomSpectrum<T>(n, seed), n, format);
                const auto plain = plainNumbers(src);
                const auto bins = realdft::packedBins<PlainNumber<T>>(
                    n, format, [&](int i) { return plain[static_cast<std::size_t>(i)]; });
                const auto y =
                    realdft::inverseSamples(*realdft::inversePlans(format).plan(n), bins);
                EXPECT_TRUE(sameBits(invert<T>(n, format, src, scale), storedNumbers<T>(y, scale)))
                    << n;
            }
        }
    }
}

TYPED_TEST(InverseBits, SmallLengthsAreTheirWrittenForms) {
    using T = TypeParam;
    for (const int n : {2, 3, 4, 5, 6, 7, 8})
        for (const Format format : kPackedFormats)
            for (const double scale : storedScales<T>(n))
                for (unsigned seed = 0; seed < 100; ++seed)
                    for (const auto& X :
                         {randomSpectrum<T>(n, seed),
                          {signedUnits<T>(n / 2 + 1, seed), signedUnits<T>(n / 2 + 1, ~seed)}})
                        EXPECT_TRUE(sameBits(
                            invert<T>(n, format, packed(X, n, format), scale),
                            BaseForms<RulesOf<T>>::inverse(X, n, scale,
                                                           format == Format::Ccs
                                                               ? HalfSpectrumBins::Ccs
                                                               : HalfSpectrumBins::PackOrPerm)))
                            << n << " " << realdft::formatName(format) << " seed " << seed;
}

TEST(InverseBits, OfSevenPointsTakeOneConstant) {
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
    for (const int n : kLengths) {
        bool packDiffers = false, permDiffers = false;
        for (unsigned seed = 0; seed < 20; ++seed) {
            const auto X = randomSpectrum<T>(n, seed);
            const double scale = scaleOf(Scaling::BySqrtN, n, isSingle<T>);
            const auto ccs = invert<T>(n, Format::Ccs, packed(X, n, Format::Ccs), scale);
            const auto pack = invert<T>(n, Format::Pack, packed(X, n, Format::Pack), scale);
            const auto perm = invert<T>(n, Format::Perm, packed(X, n, Format::Perm), scale);
            EXPECT_TRUE(sameBits(pack, perm)) << n;
            packDiffers = packDiffers || !sameBits(ccs, pack);
            permDiffers = permDiffers || !sameBits(ccs, perm);
        }
        const DataRow* row = dataTable("real_inverse_formats").find("length", n);
        const bool mayDiffer =
            row != nullptr && row->text(isSingle<T> ? "f32" : "f64") == "ccs|pack perm";
        if (n == 7 || n == 49) {
            ASSERT_TRUE(mayDiffer);
        }
        EXPECT_EQ(packDiffers, n == 7 || n == 49) << n;
        EXPECT_EQ(permDiffers, n == 7 || n == 49) << n;
    }
}

// ---- round trips and edges ----

template <class T>
std::vector<T> forwardThenBack(int n, Format format, const std::vector<T>& x, double there,
                               double back) {
    const auto spectrum =
        runGraph(realdft::forwardGraph(n, format, arithmeticOf<T>), x,
                 static_cast<std::size_t>(realdft::elementCount(format, n)), there);
    return invert<T>(n, format, spectrum, back);
}

TYPED_TEST(InverseBits, ForwardAndBackIsTheIdentity) {
    using T = TypeParam;
    for (const int n : kLengths) {
        const auto scales = storedScales<T>(n);  // 1, 1/N, 1/sqrt(N)
        const auto x = randomValues<T>(n, static_cast<unsigned>(n));
        for (const Format format : kPackedFormats)
            for (const auto& [there, back] :
                 {std::pair{scales[0], scales[1]}, {scales[1], scales[0]}, {scales[2], scales[2]}})
                EXPECT_LT(relativeError(x, forwardThenBack<T>(n, format, x, there, back)), 8) << n;
    }
}

TEST(InverseBits, ComeBackAtLengths4And6) {
    for (const Format format : kPackedFormats) {
        const auto thereAndBack = [&](const std::vector<float>& x) {
            const auto n = static_cast<int>(x.size());
            return forwardThenBack<float>(n, format, x, 1, scaleOf(Scaling::ByN, n, true));
        };
        EXPECT_EQ(thereAndBack({1, 2, 3, 4}), (std::vector<float>{1, 2, 3, 4}));
        EXPECT_EQ(thereAndBack({1, 2, 3, 4, 5, 7}),
                  (std::vector<float>{1, 1.9999998807907104F, 3, 4, 5, 7}));
    }
}

TYPED_TEST(InverseBits, IgnoredElementsOfCcsChangeNothing) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    const T infinity = std::numeric_limits<T>::infinity();
    for (const int n : kLengths) {
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
    for (const int n : kLengths) {
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
