// SPDX-License-Identifier: MIT
// The smallest things that flows are made of.
#include <gtest/gtest.h>

#include "flows/expression.h"
#include "flows/number_theory.h"
#include "kernelgen/number.h"

namespace orvgen::test {
namespace {

using namespace orvgen::flows;

TEST(NumberTheory, KnowsPrimitiveRoots) {
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
TEST(Expressions, MultiplyTheirConstantsOut) {
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
TEST(Expressions, DoubleTheirTerms) {
    const Single a(0.3125);
    const auto e = Expression<Single>::ofDouble(a);
    EXPECT_EQ(product(kernelgen::sinTurn(1, 6), e).value(), 1.7320508075688772 * 0.3125);
    EXPECT_EQ(e.formed().value(), 0.625);
    EXPECT_FALSE(e.formed().isDouble());
    EXPECT_TRUE(Expression<Single>().isEmpty());
}

}  // namespace
}  // namespace orvgen::test
