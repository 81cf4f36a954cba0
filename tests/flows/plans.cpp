// The notation of plans, and the smallest things that flows are made of.
#include <gtest/gtest.h>

#include "flows/expression.h"
#include "flows/number_theory.h"
#include "flows/plan.h"
#include "kernelgen/number.h"

namespace orvgen::flows {
namespace {

TEST(PlanNotation, Blocks) {
    const PlanPtr named = parsePlan("7");
    EXPECT_EQ(named->method, Method::Named);
    EXPECT_EQ(named->length, 7);
    EXPECT_EQ(parsePlan("11d")->method, Method::Direct);
}

TEST(PlanNotation, Joins) {
    const PlanPtr p = parsePlan("(5x3) x 4'|4");
    EXPECT_EQ(p->method, Method::GoodThomas);
    EXPECT_EQ(p->length, 60);
    EXPECT_EQ(p->parts.at(0)->method, Method::GoodThomas);
    EXPECT_EQ(p->parts[0]->parts.at(1)->length, 3);
    EXPECT_EQ(p->parts.at(1)->renumbering, Renumbering::Samples);
    EXPECT_EQ(p->complexParts.at(0), nullptr);
    EXPECT_EQ(p->complexParts.at(1)->length, 4);
    EXPECT_EQ(parsePlan("16\"x3")->parts[0]->renumbering, Renumbering::Bins);
    EXPECT_EQ(parsePlan("3.3")->method, Method::CooleyTukey);
    EXPECT_FALSE(parsePlan("3.3")->conjugateRows);
    EXPECT_TRUE(parsePlan("4:2")->conjugateRows);
}

TEST(PlanNotation, Rader) {
    const PlanPtr p = parsePlan("rader(3x4; 6; 6)");
    EXPECT_EQ(p->method, Method::Rader);
    EXPECT_EQ(p->length, 13);
    const PlanPtr inverse = parsePlan("inverse-rader(3x2; 2.3; 4x3)");
    EXPECT_EQ(inverse->length, 13);
    EXPECT_FALSE(inverse->isSplit());
    EXPECT_TRUE(parsePlan("inverse-rader(3x2; 2x3; 3x2; 6)")->isSplit());
    EXPECT_EQ(parsePlan("lanes(13)")->length, 13);
}

TEST(PlanNotation, WhatIsNoPlan) {
    for (const char* text : {"", "x", "3x", "(3x5", "3x5)", "rader(12; 6)", "inverse-rader(5; 5)",
                             "5|7", "3 5", "lanes(3"})
        EXPECT_THROW(parsePlan(text), std::logic_error) << text;
}

TEST(Plans, LaterRowsTakeThePlaceOfEarlierOnes) {
    Plans plans;
    plans.add({Transform::Real, 15, "3x5"});
    EXPECT_EQ(plans.resolve(Transform::Real, parsePlan("15"))->parts.at(0)->length, 3);
    plans.add({Transform::Real, 15, "5x3"});
    EXPECT_EQ(plans.resolve(Transform::Real, parsePlan("15"))->parts.at(0)->length, 5);
    EXPECT_EQ(plans.find(Transform::InverseReal, 15), nullptr);
    EXPECT_EQ(plans.resolve(Transform::InverseReal, parsePlan("15"))->method, Method::Direct);
    EXPECT_THROW(plans.add({Transform::Real, 15, "4x4"}), std::logic_error);
}

TEST(NumberTheory, PrimitiveRoots) {
    // the smallest ones
    const std::pair<long, long> roots[] = {{5, 2},  {7, 3},  {11, 2}, {13, 2}, {17, 3}, {19, 2},
                                           {23, 5}, {29, 2}, {31, 3}, {37, 2}, {41, 6}, {43, 3},
                                           {47, 5}, {53, 2}, {59, 2}, {61, 2}};
    for (const auto& [p, g] : roots) EXPECT_EQ(smallestRoot(p), g) << p;
    EXPECT_THROW(smallestRoot(9), std::logic_error);
    EXPECT_EQ(inverseModulo(3, 7), 5);
}

using Single = kernelgen::Number<kernelgen::Arithmetic::Single>;

// Constants in front of an unformed sum are multiplied out: one rounding instead of two.
TEST(Expressions, ConstantsAreMultipliedOut) {
    const Constant c = kernelgen::sinTurn(1, 6);
    const Constant c1 = kernelgen::cosTurn(1, 9);
    const Constant c2 = kernelgen::sinTurn(1, 9);
    const Single a(1.25), b(-0.7109375);
    const auto e = Expression<Single>::ofProducts(c1, a, c2, b);
    const double merged = (c * c1).asDouble() * 1.25 - (c * c2).asDouble() * 0.7109375;
    EXPECT_EQ(product(c, e).value(), merged);
    EXPECT_EQ(product(c, -e).value(), -merged);
    EXPECT_EQ(e.formed().value(), c1.asDouble() * 1.25 - c2.asDouble() * 0.7109375);
    EXPECT_TRUE(e.formed().isDouble());
    EXPECT_FALSE(narrow(e).isDouble());
}

// A doubled term hands its 2 to the constant; formed, it is doubled in its own type.
TEST(Expressions, DoubledTerms) {
    const Single a(0.3125);
    const auto e = Expression<Single>::ofDouble(a);
    EXPECT_EQ(product(kernelgen::sinTurn(1, 6), e).value(), 1.7320508075688772 * 0.3125);
    EXPECT_EQ(e.formed().value(), 0.625);
    EXPECT_FALSE(e.formed().isDouble());
    EXPECT_TRUE(Expression<Single>().isEmpty());
}

}  // namespace
}  // namespace orvgen::flows
