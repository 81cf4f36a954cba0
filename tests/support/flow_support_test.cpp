// SPDX-License-Identifier: MIT
// The shared checks by themselves: on flows small enough to be written out here they say what is
// so, and they notice what is not.
#include <array>

#include "kernelgen/value.h"
#include "support/closed_sets.h"
#include "support/data_table.h"
#include "support/flow_runs.h"
#include "support/packed_format.h"
#include "support/proof.h"

namespace orvgen::test {
namespace {

using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Value;

Value input(Graph& g, int element) { return {g, g.input(element)}; }

// Four real samples to R[0], R[1], I[1], R[2]: pairs (0, 2) and (1, 3) first.
Graph fourPoints() {
    Graph g(Arithmetic::Double);
    const Value x0 = input(g, 0), x1 = input(g, 1), x2 = input(g, 2), x3 = input(g, 3);
    const Value a = x0 + x2, b = x1 + x3;
    g.output(0, scaled(a + b).id());
    g.output(1, scaled(x0 - x2).id());
    g.output(2, scaled(x3 - x1).id());
    g.output(3, scaled(a - b).id());
    return g;
}

TEST(ClosedSets, FourPointsMeetInPairs) {
    const Graph g = fourPoints();
    EXPECT_EQ(closedInputSets(g, 0, 4), std::vector<long>{2});
    // a and b go into outputs 0 and 3; nothing goes into exactly outputs 1 and 2
    EXPECT_EQ(closedOutputSets(g, 0, 4), std::vector<long>{});
}

TEST(ClosedSets, ElementZeroStandsApartAtPrimes) {
    Graph g(Arithmetic::Double);
    const Value p = input(g, 1) + input(g, 4), q = input(g, 2) + input(g, 3);
    g.output(0, scaled(input(g, 0) + (p + q)).id());
    for (int k = 1; k < 3; ++k) g.output(k, scaled(p - q).id());
    g.output(3, scaled(p + q).id());
    g.output(4, scaled(input(g, 0) + q).id());
    EXPECT_EQ(firstOfSets(5), 1);
    EXPECT_EQ(closedInputSets(g, 1, 5), std::vector<long>{2});
    EXPECT_EQ(closedInputSets(g, 0, 5), std::vector<long>{});
    // p - q goes into outputs 1 and 2 and no others, but nothing goes into exactly 3 and 4
    EXPECT_EQ(closedOutputSets(g, 1, 5), std::vector<long>{});
}

TEST(ClosedSets, EverySetMustBeThere) {
    Graph g(Arithmetic::Double);  // pairs (0, 1) and (2, 3), then a value of 4 and 5 is missing
    const Value p = input(g, 0) + input(g, 1), q = input(g, 2) + input(g, 3);
    g.output(0, scaled((p + q) + input(g, 4) + input(g, 5)).id());
    EXPECT_EQ(closedInputSets(g, 0, 6), std::vector<long>{});
    Graph h(Arithmetic::Double);
    const Value t = input(h, 0) + input(h, 1), u = input(h, 2) + input(h, 3);
    h.output(0, scaled((t + u) + (input(h, 4) + input(h, 5))).id());
    EXPECT_EQ(closedInputSets(h, 0, 6), std::vector<long>{2});
}

TEST(ClosedSets, EvenSetsAreStridesOrCosets) {
    EXPECT_EQ(evenSets(2, 4), (std::vector{elementSet({0, 2}), elementSet({1, 3})}));
    EXPECT_EQ(evenSets(4, 12).size(), 3U);
    EXPECT_EQ(evenSets(4, 12)[0], elementSet({0, 3, 6, 9}));
    EXPECT_EQ(evenSets(2, 5), (std::vector{elementSet({2, 3}), elementSet({1, 4})}));
    const auto thirteen = evenSets(3, 13);
    EXPECT_EQ(std::set<ElementSet>(thirteen.begin(), thirteen.end()),
              (std::set{elementSet({1, 3, 9}), elementSet({12, 10, 4}), elementSet({8, 11, 7}),
                        elementSet({5, 2, 6})}));
}

TEST(ClosedSets, AreThereAtTheirLengths) {
    for (const int p : {2, 3, 5, 7, 11, 13, 61}) EXPECT_EQ(firstOfSets(p), 1) << p;
    for (const int n : {4, 6, 9, 49, 63, 64}) EXPECT_EQ(firstOfSets(n), 0) << n;
}

Real fourPointCoefficient(int output, int sample) {
    const std::array<Term, 4> terms = {{{0, false}, {1, false}, {1, true}, {2, false}}};
    return forwardCoefficient(4, terms[static_cast<std::size_t>(output)], sample);
}

TEST(Proof, AcceptsTheTransformAndNothingElse) {
    EXPECT_LT(proofError(fourPoints(), 4, 4, fourPointCoefficient), kProofTolerance);
    EXPECT_EQ(proofError(fourPoints(), 4, 4,
                         [](int o, int i) { return Real(2 * fourPointCoefficient(o, i)); }),
              1);
    EXPECT_THROW(proofError(fourPoints(), 3, 4, fourPointCoefficient), std::logic_error);
    EXPECT_THROW(proofError(fourPoints(), 4, 5, fourPointCoefficient), std::logic_error);
}

TEST(Proof, MatricesBelongTogether) {
    for (const int n : {2, 3, 5, 6, 8, 9}) {
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                Real back = 0, hartley = 0;
                for (int k = 0; 2 * k <= n; ++k)
                    for (const bool imaginary : {false, true})
                        back += inverseCoefficient(n, i, {k, imaginary}) *
                                forwardCoefficient(n, {k, imaginary}, j);
                for (int k = 0; k < n; ++k)
                    hartley += hartleyCoefficient(n, k, i) * hartleyCoefficient(n, k, j);
                EXPECT_LT(abs(back - (i == j ? n : 0)), kProofTolerance);
                EXPECT_LT(abs(hartley - (i == j ? n : 0)), kProofTolerance);
            }
        }
    }
}

TEST(PackedFormat, HasThePlacesOfTheTables) {
    const PackedFormat ccs("ccs", 6), pack("pack", 6), perm("perm", 6), odd("perm", 5);
    EXPECT_EQ(ccs.size(), 8);
    EXPECT_EQ(pack.size(), 6);
    EXPECT_EQ(ccs.indexOf({3, false}), 6);
    EXPECT_EQ(pack.indexOf({3, false}), 5);
    EXPECT_EQ(perm.indexOf({3, false}), 1);
    EXPECT_EQ(odd.indexOf({2, true}), 4);
    EXPECT_EQ(ccs.stored(), (std::vector<int>{0, 2, 3, 4, 5, 6}));
    for (const DataRow& row : dataTable("packed_terms").rows()) {
        const PackedFormat f(row.text("format"), static_cast<int>(row.integer("length")));
        const std::vector<std::string> terms = row.words("terms");
        ASSERT_EQ(terms.size(), static_cast<std::size_t>(f.size()));
        for (int i = 0; i < f.size(); ++i) {
            const auto& t = f.at(i);
            const std::string expected =
                t ? std::string(t->imaginary ? "I[" : "R[") + std::to_string(t->bin) + "]" : "0";
            EXPECT_EQ(terms[static_cast<std::size_t>(i)], expected);
        }
    }
}

// ---- the hand-written forms against the definition ----

template <class Rules>
class Forms : public testing::Test {};
using Sound = testing::Types<Mixed, AllDouble>;
TYPED_TEST_SUITE(Forms, Sound);

TYPED_TEST(Forms, ComputeTheTransforms) {
    using T = typename TypeParam::Sample;
    const double allowed = sizeof(T) == 4 ? 2e-6 : 5e-15;
    for (const int n : {2, 3, 4, 5, 6, 7, 8, 11}) {
        const auto x = randomValues<T>(n, 5);
        const auto X = BaseForms<TypeParam>::forward(x, 1.0);
        const auto H = BaseForms<TypeParam>::hartley(x, 1.0);
        for (int k = 0; k < n; ++k) {
            Real re = 0, im = 0, cas = 0;
            for (int j = 0; j < n; ++j) {
                const auto v = static_cast<double>(x[static_cast<std::size_t>(j)]);
                re += forwardCoefficient(n, {k, false}, j) * v;
                im += forwardCoefficient(n, {k, true}, j) * v;
                cas += hartleyCoefficient(n, k, j) * v;
            }
            const auto i = static_cast<std::size_t>(k);
            EXPECT_NEAR(static_cast<double>(H[i]), static_cast<double>(cas), allowed) << n;
            if (2 * k > n) continue;
            EXPECT_NEAR(static_cast<double>(X.re[i]), static_cast<double>(re), allowed) << n;
            EXPECT_NEAR(static_cast<double>(X.im[i]), static_cast<double>(im), allowed) << n;
        }
        if (n == 11) continue;
        const auto y = BaseForms<TypeParam>::inverse(X, n, 1.0 / n, HalfSpectrumBins::Ccs);
        for (int j = 0; j < n; ++j)
            EXPECT_NEAR(static_cast<double>(y[static_cast<std::size_t>(j)]),
                        static_cast<double>(x[static_cast<std::size_t>(j)]), allowed)
                << n;
    }
}

// ---- a check against the hand-written forms notices each wrong rounding ----

// Whether the forms under two sets of rules give different bits for some samples.
template <class Wrong>
bool forwardDiffers(int n) {
    for (unsigned seed = 0; seed < 50; ++seed) {
        const auto x = randomValues<float>(n, seed);
        const auto right = BaseForms<Mixed>::forward(x, 1.0 / n);
        const auto wrong = BaseForms<Wrong>::forward(x, 1.0 / n);
        if (right.re != wrong.re || right.im != wrong.im) return true;
    }
    return false;
}
template <class Wrong>
bool hartleyDiffers(int n) {
    for (unsigned seed = 0; seed < 50; ++seed) {
        const auto x = randomValues<float>(n, seed);
        if (BaseForms<Mixed>::hartley(x, 1.0 / n) != BaseForms<Wrong>::hartley(x, 1.0 / n))
            return true;
    }
    return false;
}
template <class Wrong>
bool inverseDiffers(int n) {
    for (unsigned seed = 0; seed < 50; ++seed) {
        HalfSpectrum<float> X{randomValues<float>(n / 2 + 1, seed),
                              randomValues<float>(n / 2 + 1, ~seed)};
        if (BaseForms<Mixed>::inverse(X, n, 1.0 / n, HalfSpectrumBins::Ccs) !=
            BaseForms<Wrong>::inverse(X, n, 1.0 / n, HalfSpectrumBins::Ccs))
            return true;
    }
    return false;
}

TEST(BaseForms, NoticeWrongRoundings) {
    for (const int n : {3, 5, 6, 7, 8, 11}) {
        EXPECT_TRUE(forwardDiffers<FloatConstants>(n)) << n;
        EXPECT_TRUE(hartleyDiffers<FloatConstants>(n)) << n;
    }
    for (const int n : {5, 7, 11}) {
        EXPECT_TRUE(forwardDiffers<RoundedProducts>(n)) << n;
        EXPECT_TRUE(hartleyDiffers<RoundedProducts>(n)) << n;
    }
    for (const int n : {6, 8}) EXPECT_TRUE(forwardDiffers<MissingNarrowing>(n)) << n;
    for (const int n : {3, 5, 6, 7, 8, 11}) EXPECT_TRUE(hartleyDiffers<MissingNarrowing>(n)) << n;
    for (const int n : {3, 5, 6, 7, 11}) {
        EXPECT_TRUE(forwardDiffers<DoubleScale>(n)) << n;
        EXPECT_TRUE(hartleyDiffers<DoubleScale>(n)) << n;
    }
    for (const int n : {3, 5, 7, 11}) EXPECT_TRUE(forwardDiffers<ScaleAfterNarrowing>(n)) << n;
    for (const int n : {3, 5, 6, 7, 8}) {
        EXPECT_TRUE(inverseDiffers<FloatConstants>(n)) << n;
        EXPECT_TRUE(inverseDiffers<MissingNarrowing>(n)) << n;
        if (n != 8) {
            EXPECT_TRUE(inverseDiffers<DoubleScale>(n)) << n;
        }
    }
    for (const int n : {5, 7}) EXPECT_TRUE(inverseDiffers<RoundedProducts>(n)) << n;
}

TEST(BaseForms, OrderOfTheRealTermsAtSevenShows) {
    bool differs = false;
    for (unsigned seed = 0; seed < 50 && !differs; ++seed) {
        const HalfSpectrum<float> X{randomValues<float>(4, seed), randomValues<float>(4, ~seed)};
        differs = BaseForms<Mixed>::inverse(X, 7, 1.0, HalfSpectrumBins::Ccs) !=
                  BaseForms<Mixed>::inverse(X, 7, 1.0, HalfSpectrumBins::PackOrPerm);
    }
    EXPECT_TRUE(differs);
}

}  // namespace
}  // namespace orvgen::test
