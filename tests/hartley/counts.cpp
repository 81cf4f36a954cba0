// SPDX-License-Identifier: MIT
// The Hartley flows against their table, and proved.
#include <gtest/gtest.h>

#include "hartley/hartley.h"
#include "kernelgen/count.h"
#include "realdft/forward.h"
#include "support/closed_sets.h"
#include "support/data_table.h"
#include "support/flow_rules.h"
#include "support/operation_counts.h"
#include "support/proof.h"

namespace orvgen::test {
namespace {

using hartley::hartleyGraph;
using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Node;
using kernelgen::Op;

TEST(Hartley, HasTheCountsOfTheTable) {
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
        CountCheck check("hartley");
        long rows = 0;
        for (const DataRow& row : dataTable("hartley").rows()) {
            const auto n = static_cast<int>(row.integer("length"));
            const Graph g = hartleyGraph(n, arithmetic);
            compareOperations(check, row, g);
            const kernelgen::Counts c = kernelgen::countOperations(g);
            EXPECT_EQ(c.signSteps, 0) << n;
            EXPECT_EQ(c.doublings, 0) << n;
            EXPECT_EQ(c.scaleProducts, n);
            EXPECT_EQ(g.deadNodes().size(), 0U) << n;
            EXPECT_EQ(closedInputSets(g, firstOfSets(n), n), row.integers("closed_sets")) << n;
            EXPECT_EQ(hartley::runsForwardFlow(n), row.flag("same_flow")) << n;
            ++rows;
        }
        EXPECT_EQ(rows, 63);
        EXPECT_EQ(check.report(), "");
    }
}

TEST(Hartley, IsTheTransform) {
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
        for (const int n : kLengths) {
            const Real error = proofError(hartleyGraph(n, arithmetic), n, n, [n](int o, int i) {
                return hartleyCoefficient(n, o, i);
            });
            EXPECT_LT(error, kProofTolerance) << n;
        }
    }
}

TEST(Hartley, ObeysTheRulesOfPrecision) {
    for (const int n : kLengths) {
        const PrecisionReport r = checkPrecision(hartleyGraph(n, Arithmetic::Single));
        EXPECT_EQ(r.complaints, "") << n;
        EXPECT_EQ(r.scaledInDouble, 0) << n;
        EXPECT_EQ(r.scaledInSingle, n);
    }
}

TEST(Hartley, AddsFirstWhatMeetsFirst) {
    const auto forward = [](int n) {
        return inputSets(realdft::forwardGraph(n, realdft::PackedFormat::Pack, Arithmetic::Single));
    };
    const auto twelve = inputSets(hartleyGraph(12, Arithmetic::Single));
    const ElementSet threePoints = elementSet({0, 4, 8}), fourPoints = elementSet({0, 3, 6, 9});
    EXPECT_TRUE(twelve.contains(threePoints));
    EXPECT_FALSE(twelve.contains(fourPoints));
    EXPECT_TRUE(forward(12).contains(fourPoints));
    const auto ten = inputSets(hartleyGraph(10, Arithmetic::Single));
    for (const auto& pair : {std::vector{0, 5}, {1, 9}, {2, 8}, {3, 7}, {4, 6}})
        EXPECT_TRUE(ten.contains(elementSet(pair))) << pair[0];
    const ElementSet fivePoints = elementSet({0, 2, 4, 6, 8});
    EXPECT_FALSE(ten.contains(fivePoints));
    EXPECT_TRUE(forward(10).contains(fivePoints));
}

// At the lengths that run the forward flow the Hartley graph holds the forward graph's operations
// up to the last layer and no others: each is found by its operands, one for one.
TEST(Hartley, IsTheForwardFlowWithAnotherLastLayer) {
    for (const int n : kLengths) {
        if (!hartley::runsForwardFlow(n) || hartley::hasOwnLastLayer(n)) continue;
        const Graph h = hartleyGraph(n, Arithmetic::Double);
        const Graph f = realdft::forwardGraph(n, realdft::PackedFormat::Pack, Arithmetic::Double);
        const auto isLast = [](const Graph& g, const Node& node) {
            return node.op == Op::MulScale || node.op == Op::Output || node.op == Op::Zero ||
                   node.op == Op::Scale || (node.op == Op::Sub && g.node(node.a).op == Op::Zero);
        };
        // the forward operations in order are the first of the Hartley graph
        std::size_t operations = 0;
        std::vector<kernelgen::NodeId> image(f.nodes().size(), kernelgen::kNone);
        std::map<std::tuple<Op, kernelgen::NodeId, kernelgen::NodeId, double>, kernelgen::NodeId>
            hartleyNodes;
        const auto extra = [](const Graph& g, const Node& node) {
            if (node.op == Op::Mul) return g.constant(node).lane(0).asDouble();
            return node.op == Op::Input ? static_cast<double>(node.index) : 0.0;
        };
        for (std::size_t i = 0; i < h.nodes().size(); ++i) {
            const Node& node = h.nodes()[i];
            hartleyNodes[{node.op, node.a, node.b, extra(h, node)}] =
                static_cast<kernelgen::NodeId>(i);
        }
        for (std::size_t i = 0; i < f.nodes().size(); ++i) {
            const Node& node = f.nodes()[i];
            if (isLast(f, node)) continue;
            const auto of = [&](kernelgen::NodeId id) {
                return id == kernelgen::kNone ? id : image[static_cast<std::size_t>(id)];
            };
            const auto found = hartleyNodes.find({node.op, of(node.a), of(node.b), extra(f, node)});
            ASSERT_NE(found, hartleyNodes.end()) << n << " value " << i;
            image[i] = found->second;
            if (node.op != Op::Input) ++operations;
        }
        std::size_t hartleyOperations = 0;
        for (const Node& node : h.nodes())
            if (!isLast(h, node) && node.op != Op::Input) ++hartleyOperations;
        EXPECT_EQ(hartleyOperations, operations + 2 * static_cast<std::size_t>((n - 1) / 2)) << n;
    }
}

}  // namespace
}  // namespace orvgen::test
