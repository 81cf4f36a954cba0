// SPDX-License-Identifier: MIT
// How the forward real flows round, read from their graphs: which operations run in which type,
// where an expression ends, how it is scaled, and that all members of a length are one data flow.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "flows/rader_constants.h"
#include "forward_flows.h"
#include "kernelgen/count.h"
#include "kernelgen/real.h"
#include "support/plan_tree.h"

namespace orvgen::test {
namespace {

using kernelgen::kNone;
using kernelgen::Node;
using kernelgen::NodeId;
using kernelgen::Op;
using kernelgen::Type;

std::size_t at(NodeId id) { return static_cast<std::size_t>(id); }

class ForwardStructure : public testing::TestWithParam<int> {
  protected:
    Graph single = realdft::forwardGraph(GetParam(), Format::Ccs, Arithmetic::Single);
    Graph binary64 = realdft::forwardGraph(GetParam(), Format::Ccs, Arithmetic::Double);
};

INSTANTIATE_TEST_SUITE_P(Lengths, ForwardStructure,
                         testing::Range(kLengths.first, kLengths.last + 1));

// Every product by a constant is in binary64; every binary64 sum belongs to the expression of such
// a product; an expression is rounded once, and what is rounded is an expression.
TEST_P(ForwardStructure, RoundsDoubleExpressionsOnce) {
    const auto& nodes = single.nodes();
    std::vector<bool> isExpression(nodes.size(), false);
    std::vector<int> narrowings(nodes.size(), 0);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Node& n = nodes[i];
        switch (n.op) {
            case Op::Mul:
                ASSERT_EQ(n.type, Type::F64);
                ASSERT_EQ(single.node(n.a).op, Op::Widen) << "a product of an open expression";
                isExpression[i] = true;
                break;
            case Op::Add:
            case Op::Sub:
                if (n.type == Type::F64) {
                    isExpression[i] = isExpression[at(n.a)] || isExpression[at(n.b)];
                    ASSERT_TRUE(isExpression[i]) << "a binary64 sum of samples";
                }
                break;
            case Op::MulScale:
                isExpression[i] = isExpression[at(n.a)];
                break;
            case Op::Narrow:
                ASSERT_TRUE(isExpression[at(n.a)]) << "a rounding of what was never an expression";
                ++narrowings[at(n.a)];
                break;
            case Op::Output:
                ASSERT_EQ(single.node(n.a).type, Type::F32);
                break;
            default:
                break;
        }
    }
    for (const int count : narrowings) ASSERT_LE(count, 1);
}

// No value is both rounded and used in binary64 but at the places that carry on.
TEST_P(ForwardStructure, UsesAnExpressionOnceBesidesItsRounding) {
    const auto& nodes = single.nodes();
    std::vector<bool> narrowed(nodes.size(), false), continued(nodes.size(), false);
    for (const Node& n : nodes) {
        if (n.op == Op::Narrow) narrowed[at(n.a)] = true;
        if (n.op == Op::Add || n.op == Op::Sub || n.op == Op::MulScale) {
            for (const NodeId operand : {n.a, n.b})
                if (operand != kNone) continued[at(operand)] = true;
        }
    }
    int carried = 0;
    for (std::size_t i = 0; i < nodes.size(); ++i)
        if (nodes[i].type == Type::F64 && narrowed[i] && continued[i]) ++carried;
    EXPECT_EQ(carried, unroundedValues(*realdft::forwardPlans().plan(GetParam())));
}

// Exactly one scale product for each stored term, in the type in which the value stands, and then
// only the sign step and the rounding; the zero slots of CCS take none.
TEST_P(ForwardStructure, TakesTheScaleLast) {
    for (const Graph* g : {&single, &binary64}) {
        int scaled = 0;
        int zeros = 0;
        for (const Node& n : g->nodes()) {
            if (n.op != Op::Output) continue;
            const Node* v = &g->node(n.a);
            if (v->op == Op::Zero) {
                ++zeros;
                continue;
            }
            if (v->op == Op::Narrow) v = &g->node(v->a);
            if (v->op == Op::Sub && g->node(v->a).op == Op::Zero) v = &g->node(v->b);
            ASSERT_EQ(v->op, Op::MulScale);
            const Node& scale = g->node(v->b);
            if (g == &single && v->type == Type::F64) {
                ASSERT_EQ(scale.op, Op::Widen);
                ASSERT_EQ(g->node(scale.a).op, Op::Scale);
                ASSERT_NE(g->node(v->a).op, Op::Widen) << "a sum of samples scaled in binary64";
            } else {
                ASSERT_EQ(scale.op, Op::Scale);
            }
            ++scaled;
        }
        EXPECT_EQ(scaled, GetParam());
        EXPECT_EQ(zeros, GetParam() % 2 == 0 ? 2 : 1);
        EXPECT_EQ(kernelgen::countOperations(*g).scaleProducts, GetParam());
    }
}

// Constants are positive and neither 0 nor 1: signs are additions and subtractions.
TEST_P(ForwardStructure, HasThePoolConstantsOfTheTable) {
    for (const Graph* g : {&single, &binary64})
        for (const Node& n : g->nodes())
            if (n.op == Op::Mul) {
                ASSERT_EQ(g->constant(n).lanes.size(), 1U);
                const double c = g->constant(n).lane(0).asDouble();
                EXPECT_GT(c, 0);
                EXPECT_LT(c, 1);
            }
}

// A flow without its conversions: every other operation, with its operands by number.
struct Operation {
    Op op;
    NodeId a, b;
    double constant;
    int element;
    bool operator==(const Operation&) const = default;
};

std::vector<Operation> withoutConversions(const Graph& g, bool placesToo) {
    std::vector<NodeId> number(g.nodes().size(), kNone);
    std::vector<Operation> list;
    const auto of = [&](NodeId id) { return id == kNone ? kNone : number[at(id)]; };
    NodeId scale = kNone;
    NodeId zero = kNone;
    for (std::size_t i = 0; i < g.nodes().size(); ++i) {
        const Node& n = g.nodes()[i];
        if (n.op == Op::Widen || n.op == Op::Narrow) {
            number[i] = of(n.a);
            continue;
        }
        // binary32 flows have two scales and two zeros, one a type; they are one number
        NodeId* const common = n.op == Op::Scale ? &scale : n.op == Op::Zero ? &zero : nullptr;
        if (common != nullptr) {
            if (*common == kNone) *common = -2 - (n.op == Op::Zero ? 1 : 0);
            number[i] = *common;
            continue;
        }
        if (n.op == Op::Output && !placesToo && of(n.a) == zero) continue;
        number[i] = static_cast<NodeId>(list.size());
        list.push_back({n.op, of(n.a), of(n.b),
                        n.op == Op::Mul ? g.constant(n).lane(0).asDouble() : 0,
                        n.op == Op::Input || (n.op == Op::Output && placesToo) ? n.index : 0});
    }
    return list;
}

TEST_P(ForwardStructure, OfBinary64IsThatOfBinary32WithoutConversions) {
    EXPECT_EQ(withoutConversions(single, true), withoutConversions(binary64, true));
}

TEST_P(ForwardStructure, IsOneFlowForAllFormats) {
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
        const auto ccs =
            withoutConversions(realdft::forwardGraph(GetParam(), Format::Ccs, arithmetic), false);
        for (const Format format : {Format::Pack, Format::Perm})
            EXPECT_EQ(ccs, withoutConversions(realdft::forwardGraph(GetParam(), format, arithmetic),
                                              false));
    }
}

TEST(ForwardForms, TakeTheScaleInTheTypeOfTheirLength) {
    // all outputs of 3, 5, 7, 11 but the first are scaled in binary64, all of the binary lengths in
    // binary32
    const auto wide = [](int n) {
        int count = 0;
        const Graph g = realdft::forwardGraph(n, Format::Pack, Arithmetic::Single);
        for (const Node& node : g.nodes())
            count += node.op == Op::MulScale && node.type == Type::F64;
        return count;
    };
    for (const int n : {3, 5, 7, 11}) EXPECT_EQ(wide(n), n - 1) << n;
    for (const int n : {2, 4, 8, 16, 32, 64}) EXPECT_EQ(wide(n), 0) << n;
}

// A rotation by 45 degrees has two products; length 8 has one and nothing else.
TEST(ForwardForms, OfEightHaveTwoProducts) {
    const Graph g = realdft::forwardGraph(8, Format::Pack, Arithmetic::Double);
    int products = 0;
    for (const Node& n : g.nodes())
        if (n.op == Op::Mul) {
            ++products;
            EXPECT_EQ(g.constant(n).lane(0).asDouble(), 0.7071067811865476);
        }
    EXPECT_EQ(products, 2);
}

// The constants of the Rader lengths: 1/L, |W[L/2]| = sqrt(p)/L, and products of modulus
// 2 sqrt(p)/L for the frequencies between, which stand for two of the cycle each.
TEST(ForwardForms, HoldRadersConstants) {
    for (const int p : {13, 17, 19, 23, 29, 31, 37, 41, 43, 47, 53, 59, 61}) {
        const flows::RaderConstants k(p, 1);
        const auto m = static_cast<std::size_t>((p - 1) / 2);
        EXPECT_EQ(k.re[0].exact().value, kernelgen::Real(-1) / (p - 1));
        EXPECT_LT(abs(abs(k.re[m].exact().value) - sqrt(kernelgen::Real(p)) / (p - 1)), 1e-60);
        for (std::size_t i = 1; i < m; ++i) {
            const kernelgen::Real square = k.re[i].exact().value * k.re[i].exact().value +
                                           k.im[i].exact().value * k.im[i].exact().value;
            EXPECT_LT(abs(square - kernelgen::Real(4 * p) / ((p - 1) * (p - 1))), 1e-60);
        }
    }
    EXPECT_EQ(flows::RaderConstants(13, 1).re[6].magnitude().asDouble(), 0.3004626062886657);
}

// The samples of length 13 meet first in the cosets of the subgroup of order 3.
TEST(ForwardForms, OfThirteenBeginWithTheirBlocks) {
    const Graph g = realdft::forwardGraph(13, Format::Pack, Arithmetic::Single);
    std::set<std::set<int>> pairs;
    for (const Node& n : g.nodes())
        if (n.op == Op::Sub && g.node(n.a).op == Op::Input && g.node(n.b).op == Op::Input)
            pairs.insert({g.node(n.a).index, g.node(n.b).index});
    EXPECT_EQ(pairs, (std::set<std::set<int>>{{3, 9}, {4, 10}, {7, 11}, {2, 6}}));
}

}  // namespace
}  // namespace orvgen::test
