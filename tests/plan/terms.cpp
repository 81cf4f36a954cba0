// SPDX-License-Identifier: MIT
// What tables of plans are written with: which tree a term becomes, and what it refuses.
#include <gtest/gtest.h>

#include "plan/table.h"

namespace orvgen::test {
namespace {

using namespace orvgen::plan;

PlanPtr only(Transform transform, const Term& term) {
    return Table(transform, {{term.length(), term}}).plan(term.length());
}

// The transforms of a stage's blocks.
std::vector<Transform> kinds(const Stage& stage) {
    std::vector<Transform> list;
    for (const PlanPtr& block : stage) list.push_back(block->transform);
    return list;
}

using enum Transform;
using Kinds = std::vector<Transform>;

TEST(PlanTerms, TakeNumbersForRowsOfTheTable) {
    const Table table(Real, {{6, goodThomas(3, 2)}, {12, goodThomas(4, 3)}, {7, block(7)}});
    EXPECT_TRUE(table.plan(6)->as<GoodThomas>());
    EXPECT_EQ(table.plan(12)->as<GoodThomas>()->first[0]->length, 4);
    EXPECT_TRUE(table.plan(5)->as<Block>());
    EXPECT_THROW(table.plan(9), std::logic_error);
}

TEST(PlanTerms, TakeNumbersElsewhereForBlocks) {
    const auto thirteen = [](const Term& even) {
        return rader({.cycle = goodThomas(4, 3), .even = even, .odd = cooleyTukey(2, 3)});
    };
    // six points inverse: not the row of six points
    EXPECT_THROW(Table(Real, {{6, goodThomas(3, 2)}, {13, thirteen(6)}}), std::logic_error);
    const PlanPtr plan = only(Real, thirteen(goodThomas(2, 3)));
    const auto& node = *plan->as<RealRader>();
    EXPECT_EQ(node.cycle->transform, Real);
    EXPECT_EQ(node.even->transform, InverseReal);
    EXPECT_EQ(node.odd->transform, InverseOdd);
}

TEST(PlanTerms, LetALaterTableStandOnAnEarlierOne) {
    const Table first(Real, {{6, goodThomas(3, 2)}, {18, cooleyTukey(3, 6)}});
    const Table second(Real, {{6, goodThomas(2, 3)}}, &first);
    EXPECT_EQ(second.plan(6)->as<GoodThomas>()->first[0]->length, 2);
    // rows of the earlier table stay as they are
    EXPECT_EQ(second.plan(18), first.plan(18));
    EXPECT_EQ(first.plan(18)->as<CooleyTukey>()->second[0], first.plan(6));
}

TEST(PlanTerms, GiveStagesTheTransformsOfTheirRows) {
    const auto goodThomasReal = *only(Real, goodThomas(4, 5))->as<GoodThomas>();
    EXPECT_EQ(kinds(goodThomasReal.first), Kinds(5, Real));
    EXPECT_EQ(kinds(goodThomasReal.second), (Kinds{Real, Complex, Real}));
    const auto goodThomasInverse = *only(InverseReal, goodThomas(4, 5))->as<GoodThomas>();
    EXPECT_EQ(kinds(goodThomasInverse.first), (Kinds{InverseReal, Complex, Complex}));
    EXPECT_EQ(kinds(goodThomasInverse.second), Kinds(4, InverseReal));

    const auto twiddled = *only(Real, cooleyTukey(4, 3))->as<CooleyTukey>();
    EXPECT_EQ(kinds(twiddled.second), (Kinds{Real, Complex, Odd}));
    ASSERT_TRUE(twiddled.second[2]->as<Alternating>());
    EXPECT_EQ(twiddled.second[2]->as<Alternating>()->plan->transform, Real);
    const auto mirror = *only(InverseReal, cooleyTukey(3, 4))->as<CooleyTukey>();
    EXPECT_EQ(kinds(mirror.first), (Kinds{InverseReal, Complex, InverseOdd}));
    EXPECT_EQ(kinds(mirror.second), Kinds(3, InverseReal));

    const auto odd = *only(Odd, cooleyTukey(2, 5))->as<CooleyTukey>();
    EXPECT_EQ(kinds(odd.first), Kinds(5, Odd));
    EXPECT_EQ(kinds(odd.second), Kinds{Complex});

    const auto complex = *only(Complex, cooleyTukey(3, 4))->as<CooleyTukey>();
    EXPECT_EQ(kinds(complex.first), Kinds(4, Complex));
    EXPECT_EQ(kinds(complex.second), Kinds(3, Complex));
    EXPECT_TRUE(complex.first[0]->as<Block>());
}

TEST(PlanTerms, RunComplexRowsInLanes) {
    const auto row = [](const Factor& f) {
        const PlanPtr join = only(Real, goodThomas(3, f));
        return join->as<GoodThomas>()->second.at(1);
    };
    ASSERT_TRUE(row(cooleyTukey(2, 2))->as<Lanes>());
    EXPECT_TRUE(row(cooleyTukey(2, 2))->as<Lanes>()->re->as<CooleyTukey>());
    EXPECT_TRUE(row(factor(4).complexRows(cooleyTukey(2, 2)))->as<CooleyTukey>());
    EXPECT_TRUE(row(factor(cooleyTukey(2, 2)).complexRows(4))->as<Lanes>()->re->as<Block>());
}

TEST(PlanTerms, CanBeSingleBlocks) {
    const Term three = block(3, {.unrounded = Unrounded::Head});
    const auto join = *only(Real, goodThomas(factor(3).at(1, three), 2))->as<GoodThomas>();
    EXPECT_EQ(join.first.at(0)->as<Block>()->unrounded, Unrounded::None);
    EXPECT_EQ(join.first.at(1)->as<Block>()->unrounded, Unrounded::Head);
}

// Whatever names something that is not there is an error, and fails the build of a kernel.
TEST(PlanTerms, RefuseChoicesThatApplyToNothing) {
    const auto refused = [](Transform transform, const Term& term) {
        EXPECT_THROW(only(transform, term), std::logic_error);
    };
    const auto block3 = [](Unrounded which) { return block(3, {.unrounded = which}); };
    // a carried operand that the block does not have
    refused(Real, block(4, {.unrounded = Unrounded::Head}));
    refused(Real, block3(Unrounded::RealPart));
    refused(Real, block3(Unrounded::Both));
    refused(Real, block(2, {.unrounded = Unrounded::Head}));
    refused(InverseReal,
            inverseRader(
                {.even = 5, .odd = 5, .cycle = goodThomas(2, 5), .unrounded = Unrounded::Both}));
    // an order of sums where there are none
    refused(Real, block(3, {.sums = SumOrder{}}));
    // blocks and rows that the stage does not have
    refused(Real, goodThomas(3, factor(2).at(2, 2)));
    refused(Real, goodThomas(3, factor(2).at(-1, 2)));
    refused(Real, goodThomas(2, factor(3).complexRows(3)));
    refused(Real, cooleyTukey(3, factor(4).oddRow(cooleyTukey(2, 2))));
    refused(Real, goodThomas(factor(3).oddRow(3), 2));
    // of another length
    refused(Real, goodThomas(3, factor(2).at(0, 4)));
    // conjugate rows where there are no complex ones, or where the rows come last
    refused(InverseReal, cooleyTukey(4, 2, {.conjugateRows = true}));
    refused(Real, cooleyTukey(4, 4, {.conjugateRows = true}));
    // representatives and lanes of real data, and representatives of nothing
    refused(Real, cooleyTukey(2, 3, {.columns = {0, 4, 2}}));
    refused(Real, cooleyTukey(3, 3, {.twiddleLanes = TwiddleLanes::Columns}));
    refused(Complex, cooleyTukey(2, 3, {.columns = {0, 1}}));
    refused(Complex, cooleyTukey(2, 3, {.columns = {0, 3, 2}}));
    refused(Complex, cooleyTukey(2, 5, {.columns = {0, 6, 2, 8, 5}}));
}

TEST(PlanTerms, RefuseWhatIsNoPlan) {
    const auto refused = [](Transform transform, const Term& term) {
        EXPECT_THROW(only(transform, term), std::logic_error);
    };
    EXPECT_THROW(goodThomas(4, 2), std::logic_error);
    EXPECT_THROW(rader({.cycle = 4, .even = 3, .odd = 2}), std::logic_error);
    EXPECT_THROW(inverseRader({.even = 2, .odd = 3, .cycle = 4}), std::logic_error);
    EXPECT_THROW(lanes(3, 4), std::logic_error);
    EXPECT_THROW(bluestein(47, cooleyTukey(4, 4), cooleyTukey(4, 4)), std::logic_error);
    EXPECT_THROW(Table(Real, {{6, goodThomas(3, 5)}}), std::logic_error);
    EXPECT_THROW(Table(Real, {{6, goodThomas(3, 2)}, {6, goodThomas(2, 3)}}), std::logic_error);
    EXPECT_THROW(Table(Real, {{5, 5}}), std::logic_error);
    EXPECT_THROW(Table(Real, {{5, renumbered(Renumbered::What::Bins, 5)}}), std::logic_error);
    refused(Real, block(6));
    refused(Odd, block(4));
    refused(Odd, goodThomas(3, 2));
    refused(Complex, rader({.cycle = 4, .even = 2, .odd = 2}));
    refused(Real, complexRader(4));
    refused(Real, laneRader(13));
    EXPECT_THROW(laneRader(13, {.sineFolds = {6}}), std::logic_error);
    refused(InverseReal, rader({.cycle = 4, .even = 2, .odd = 2}));
    refused(Real, inverseRader({.even = 2, .odd = 2, .cycle = 4}));
    refused(Real, lanes(3));
    refused(InverseReal, renumbered(Renumbered::What::Bins, 5));
    // a row of the middle of even length has to say how it is made
    refused(Real, cooleyTukey(4, 4));
}

TEST(PlanTerms, HaveMirrors) {
    const PlanPtr plan = only(Complex, cooleyTukey(goodThomas(3, 2), 3, {.columns = {0, 4, 2}}));
    const PlanPtr mirror = mirrored(plan);
    const auto& join = *mirror->as<CooleyTukey>();
    EXPECT_EQ(join.first.size(), 6U);
    EXPECT_EQ(join.first[0]->length, 3);
    EXPECT_EQ(join.second.size(), 3U);
    EXPECT_EQ(join.rows, (std::vector<int>{0, 4, 2}));
    EXPECT_EQ(join.columns.size(), 6U);
    EXPECT_EQ(join.twiddleLanes, TwiddleLanes::Columns);
    EXPECT_EQ(join.second[0]->as<GoodThomas>()->first[0]->length, 2);
    const PlanPtr rader = only(Complex, complexRader(goodThomas(4, 3)));
    EXPECT_EQ(rader->as<ComplexRader>()->back->as<GoodThomas>()->first[0]->length, 3);
    EXPECT_THROW(mirrored(only(Real, goodThomas(3, 2))), std::logic_error);
}

}  // namespace
}  // namespace orvgen::test
