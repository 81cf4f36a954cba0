// SPDX-License-Identifier: MIT
// Plans as they are printed.
#include "plan/notation.h"

#include <gtest/gtest.h>

#include "plan/table.h"

namespace orvgen::test {
namespace {

using namespace orvgen::plan;

using enum Transform;

std::string printed(Transform transform, const Term& term) {
    return notation(*Table(transform, {{term.length(), term}}).plan(term.length()));
}

TEST(PlanNotation, TellsJoins) {
    EXPECT_EQ(printed(Complex, block(5)), "5");
    EXPECT_EQ(printed(Complex, goodThomas(4, 3)), "4, 3");
    EXPECT_EQ(printed(Complex, cooleyTukey(goodThomas(5, 3), 3)), "(5, 3) T 3");
    EXPECT_EQ(printed(Complex, goodThomas(2, cooleyTukey(3, 3))), "2, (3 T 3)");
    EXPECT_EQ(printed(Complex, cooleyTukey(goodThomas(3, 2), 3, {.columns = {0, 4, 2}})),
              "(3, 2) T{columns 0 4 2} 3");
    EXPECT_EQ(printed(Complex, cooleyTukey(4, 2, {.twiddleLanes = TwiddleLanes::Columns})),
              "4 T{twiddles of columns} 2");
    EXPECT_EQ(printed(InverseOdd, cooleyTukey(2, 3, {.conjugateRows = true})),
              "2 T{conjugate rows} 3");
}

TEST(PlanNotation, TellsPrimes) {
    EXPECT_EQ(
        printed(
            Real,
            rader({.cycle = goodThomas(4, 3), .even = goodThomas(2, 3), .odd = cooleyTukey(2, 3)})),
        "Rader 13(4, 3; 2, 3; 2 T 3)");
    EXPECT_EQ(printed(InverseReal, inverseRader({.even = 2, .odd = 2, .cycle = 4})),
              "inverse Rader 5(2; 2; 4)");
    EXPECT_EQ(printed(InverseReal, splitInverseRader({.even = 3,
                                                      .odd = 3,
                                                      .cycleEven = 3,
                                                      .cycleOdd = 3,
                                                      .unrounded = Unrounded::Head})),
              "inverse Rader 7(3; 3; 3; 3){head}");
    EXPECT_EQ(printed(Complex, complexRader(goodThomas(4, 3))), "Rader 13(4, 3)");
    EXPECT_EQ(printed(Complex, complexRader(goodThomas(2, 3), ComplexRader::Form::Packed)),
              "Rader 7(2, 3){packed}");
    EXPECT_EQ(printed(Complex, complexRader(goodThomas(5, 2), ComplexRader::Form::SplitWithLone)),
              "Rader 11(5, 2){lone pair}");
    EXPECT_EQ(printed(Complex, laneRader(13, {.offset = 1, .sineFolds = {2, 4}})),
              "lane Rader 13{from g^1; sin 60 in bins 2 4}");
    EXPECT_EQ(printed(Complex, bluestein(5, goodThomas(3, 4), goodThomas(4, 3))),
              "Bluestein 5(3, 4; 4, 3)");
}

TEST(PlanNotation, TellsBlocksThatDiffer) {
    const Term four = cooleyTukey(2, 2), three = block(3, {.unrounded = Unrounded::Head});
    EXPECT_EQ(printed(Real, cooleyTukey(4, factor(4).oddRow(four))), "4 T [4; odd 2 T 2]");
    EXPECT_EQ(printed(Real, goodThomas(3, factor(4).complexRows(four))), "3, [4; complex 2 T 2]");
    // in lanes by the plan of the real rows, or by another one
    EXPECT_EQ(printed(Real, goodThomas(3, four)), "3, (2 T 2)");
    EXPECT_EQ(printed(Real, goodThomas(3, factor(four).complexRows(4))), "3, [2 T 2; complex 4]");
    EXPECT_EQ(printed(Real, goodThomas(3, factor(4).complexRows(lanes(four)))),
              "3, [4; complex lanes(2 T 2)]");
    EXPECT_EQ(printed(Real, goodThomas(factor(3).at(1, three), 2)), "[3; 1: 3{head}], 2");
    EXPECT_EQ(printed(Real, cooleyTukey(3, factor(3).at(1, lanes(three, 3)))),
              "3 T [3; complex lanes(3{head} | 3)]");
    EXPECT_EQ(printed(Real, cooleyTukey(5, factor(3).at(1, lanes(three)))), "5 T [3; 1: 3{head}]");
    // the middle row of an odd length has the plan of the others, with alternating signs
    EXPECT_EQ(printed(Real, cooleyTukey(4, 3)), "4 T 3");
    EXPECT_EQ(printed(Odd, cooleyTukey(2, factor(3).complexRows(3))), "2 T 3");
    EXPECT_EQ(printed(Odd, cooleyTukey(goodThomas(3, 5), 2)), "(3, 5) T 2");
}

TEST(PlanNotation, TellsChoices) {
    EXPECT_EQ(printed(Real, renumbered(Renumbered::What::Bins, cooleyTukey(4, 3))),
              "(4 T 3){bins renumbered}");
    EXPECT_EQ(printed(Real, renumbered(Renumbered::What::Samples, block(7))),
              "7{samples renumbered}");
    const auto sevenPoints = [](const SumOrder& sums) {
        return printed(InverseReal, block(7, {.unrounded = Unrounded::Head, .sums = sums}));
    };
    EXPECT_EQ(sevenPoints({}), "7{head}");
    EXPECT_EQ(sevenPoints({.cosinePairs = SumOrder::Pairs::PowersOfRoot}), "7{head; cosines by g}");
    EXPECT_EQ(sevenPoints({.cosinePairs = SumOrder::Pairs::Ascending,
                           .sinePairs = SumOrder::Pairs::Descending,
                           .centre = SumOrder::Centre::First,
                           .sines = SumOrder::Sines::PositiveFirst}),
              "7{head; cosines up; sines down; x[0] first; positive sine first}");
}

}  // namespace
}  // namespace orvgen::test
