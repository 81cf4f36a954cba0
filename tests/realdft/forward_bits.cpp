// SPDX-License-Identifier: MIT
// The forward real flows in numbers: the graph against the same flow on plain numbers and against
// the hand-written base forms, and the inputs that show something.
#include "forward_flows.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

const std::vector<int> kRoundings = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

class Rounding {
  public:
    explicit Rounding(int mode) : before_(std::fegetround()) { std::fesetround(mode); }
    Rounding(const Rounding&) = delete;
    Rounding& operator=(const Rounding&) = delete;
    ~Rounding() { std::fesetround(before_); }

  private:
    int before_;
};

template <class T>
class ForwardBits : public testing::Test {};
TYPED_TEST_SUITE(ForwardBits, Elements);

// The flow on plain numbers, packed.
template <class T>
std::vector<T> computed(Format format, int n, const std::vector<T>& x, double scale) {
    const auto scaleBy = [&](const PlainNumber<T>& a) { return scaledBy(scale, a); };
    std::vector<T> y(static_cast<std::size_t>(realdft::elementCount(format, n) + kMargin),
                     poison<T>());
    for (const auto& term :
         realdft::forwardTerms(realdft::forwardBins(n, plainNumbers(x)), scaleBy)) {
        const int place = term.isImaginary ? realdft::imaginaryPosition(format, n, term.bin)
                                           : realdft::realPosition(format, n, term.bin);
        y[static_cast<std::size_t>(place)] = static_cast<T>(term.value.value());
    }
    for (const int place : realdft::zeroPositions(format, n))
        y[static_cast<std::size_t>(place)] = 0;
    return y;
}

template <class T>
void expectSame(const std::vector<T>& a, const std::vector<T>& b, const std::string& what) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        ASSERT_TRUE(sameBits(a[i], b[i]))
            << what << " element " << i << ": " << a[i] << " and " << b[i];
}

TYPED_TEST(ForwardBits, OfTheGraphAreThoseOfTheFlowOnNumbers) {
    for (const int n : kLengths) {
        const Graph g = realdft::forwardGraph(n, Format::Ccs, arithmeticOf<TypeParam>);
        const auto scales = storedScales<TypeParam>(n);
        for (std::size_t m = 0; m < kRoundings.size(); ++m) {
            for (unsigned seed = 0; seed < 2; ++seed) {
                const auto x = samples<TypeParam>(n, seed, seed == 1);
                const double scale = scales[(m + seed) % scales.size()];
                std::vector<TypeParam> graph, numbers;
                {
                    const Rounding rounding(kRoundings[m]);
                    graph = run(g, Format::Ccs, n, x, scale);
                    numbers = computed(Format::Ccs, n, x, scale);
                }
                expectSame(graph, numbers, "length " + std::to_string(n));
            }
        }
    }
}

TYPED_TEST(ForwardBits, AreThoseOfTheFormsByHand) {
    using Forms = BaseForms<RulesOf<TypeParam>>;
    for (const int n : {2, 3, 4, 5, 6, 7, 8, 11}) {
        const Graph g = realdft::forwardGraph(n, Format::Ccs, arithmeticOf<TypeParam>);
        for (unsigned seed = 0; seed < 200; ++seed) {
            for (const auto& x : {samples<TypeParam>(n, seed), signedUnits<TypeParam>(n, seed)}) {
                for (const double scale : storedScales<TypeParam>(n)) {
                    const auto y = run(g, Format::Ccs, n, x, scale);
                    const auto X = Forms::forward(x, scale);
                    for (int k = 0; 2 * k <= n; ++k) {
                        const auto i = static_cast<std::size_t>(k);
                        ASSERT_TRUE(sameBits(y[2 * i], X.re[i])) << n << " R " << k;
                        if (k > 0 && 2 * k < n) {
                            ASSERT_TRUE(sameBits(y[2 * i + 1], X.im[i])) << n << " I " << k;
                        }
                    }
                }
            }
        }
    }
}

// All formats hold the same numbers, each at its place, the zero slots +0.0 in every bit also where
// the samples are not finite; nothing is written behind the last element.
TYPED_TEST(ForwardBits, AgreeInAllFormatsAndStayInside) {
    using T = TypeParam;
    for (const int n : kLengths) {
        for (unsigned seed = 0; seed < 6; ++seed) {
            const auto x = samples<T>(n, seed, seed > 2);
            const auto ccs =
                run(realdft::forwardGraph(n, Format::Ccs, arithmeticOf<T>), Format::Ccs, n, x);
            for (const Format format : realdft::kPackedFormats) {
                const auto y = run(realdft::forwardGraph(n, format, arithmeticOf<T>), format, n, x);
                const auto count = static_cast<std::size_t>(realdft::elementCount(format, n));
                for (std::size_t i = count; i < y.size(); ++i)
                    ASSERT_EQ(bitsOf(y[i]), bitsOf(poison<T>()));
                for (const int i : realdft::zeroPositions(format, n))
                    ASSERT_EQ(bitsOf(y[static_cast<std::size_t>(i)]), bitsOf(T(0)));
                for (int k = 0; 2 * k <= n; ++k) {
                    const auto at = [](const std::vector<T>& v, int i) {
                        return v[static_cast<std::size_t>(i)];
                    };
                    ASSERT_TRUE(
                        sameBits(at(y, realdft::realPosition(format, n, k)), at(ccs, 2 * k)));
                    if (k > 0 && 2 * k < n) {
                        ASSERT_TRUE(sameBits(at(y, realdft::imaginaryPosition(format, n, k)),
                                             at(ccs, 2 * k + 1)));
                    }
                }
            }
        }
    }
}

template <class T>
void expectConstantSpectrum(Format format, int n, T first, const std::vector<T>& y) {
    EXPECT_EQ(bitsOf(y[0]), bitsOf(first)) << n;
    for (int i = 1; i < realdft::elementCount(format, n); ++i)
        EXPECT_EQ(bitsOf(y[static_cast<std::size_t>(i)]), bitsOf(T(0)))
            << n << " " << realdft::formatName(format) << " element " << i;
}

TYPED_TEST(ForwardBits, OfOnesAreExact) {
    using T = TypeParam;
    const auto lengths = dataTable("real_forward_all_ones").list("length");
    ASSERT_EQ(lengths.size(), 13U);
    for (const long length : lengths) {
        const auto n = static_cast<int>(length);
        for (const Format format : realdft::kPackedFormats) {
            const Graph g = realdft::forwardGraph(n, format, arithmeticOf<T>);
            const std::vector<T> ones(static_cast<std::size_t>(n), T(1));
            expectConstantSpectrum(format, n, T(n), run(g, format, n, ones));
        }
    }
}

TYPED_TEST(ForwardBits, KeepZerosOfEitherSign) {
    using T = TypeParam;
    for (const int n : kLengths) {
        for (const Format format : realdft::kPackedFormats) {
            const Graph g = realdft::forwardGraph(n, format, arithmeticOf<T>);
            for (const double scale : storedScales<T>(n)) {
                std::vector<T> x(static_cast<std::size_t>(n), T(0));
                expectConstantSpectrum(format, n, T(0), run(g, format, n, x, scale));
                x.assign(x.size(), -T(0));
                expectConstantSpectrum(format, n, -T(0), run(g, format, n, x, scale));
            }
        }
    }
}

TEST(ForwardExamples, ShowPackedArrays) {
    for (const DataRow& row : dataTable("packed_examples").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        const std::string& name = row.text("format");
        const Format format = name == "ccs"    ? Format::Ccs
                              : name == "pack" ? Format::Pack
                                               : Format::Perm;
        const auto y = run(realdft::forwardGraph(n, format, Arithmetic::Double), format, n,
                           row.numbers("samples"));
        const auto expected = row.numbers("elements");
        ASSERT_EQ(static_cast<int>(expected.size()), realdft::elementCount(format, n));
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(y[i], expected[i]) << n << " " << name << " element " << i;
    }
}

// Perm and Pack differ from length 4 on where there is a Nyquist bin, and only there.
TEST(ForwardExamples, ShowPackAndPerm) {
    for (const int n : kLengths) {
        const auto x = samples<double>(n, 7);
        const auto pack =
            run(realdft::forwardGraph(n, Format::Pack, Arithmetic::Double), Format::Pack, n, x);
        const auto perm =
            run(realdft::forwardGraph(n, Format::Perm, Arithmetic::Double), Format::Perm, n, x);
        bool same = true;
        for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i)
            same = same && sameBits(pack[i], perm[i]);
        EXPECT_EQ(same, n == 2 || n % 2 == 1) << n;
    }
}

// Binary32 kernels scale by the binary32 number nearest to 1/N, also where the product is formed in
// binary64: with the binary64 quotient other bits come out.
TEST(ForwardExamples, TakeABinary32Scale) {
    for (const int n : {3, 5, 7, 11}) {
        const Graph g = realdft::forwardGraph(n, Format::Pack, Arithmetic::Single);
        bool differs = false;
        for (unsigned seed = 0; seed < 100 && !differs; ++seed) {
            const auto x = samples<float>(n, seed);
            const auto right =
                run(g, Format::Pack, n, x, static_cast<double>(1.0F / static_cast<float>(n)));
            const auto wrong = run(g, Format::Pack, n, x, 1.0 / n);
            for (std::size_t i = 1; i < static_cast<std::size_t>(n); ++i)
                differs = differs || !sameBits(right[i], wrong[i]);
        }
        EXPECT_TRUE(differs) << n;
    }
}

}  // namespace
}  // namespace orvgen::test
