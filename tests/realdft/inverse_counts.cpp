// SPDX-License-Identifier: MIT
// The inverse real flows against their table, and proved.
#include <gtest/gtest.h>

#include <map>

#include "kernelgen/count.h"
#include "realdft/inverse.h"
#include "support/closed_sets.h"
#include "support/data_table.h"
#include "support/flow_rules.h"
#include "support/operation_counts.h"
#include "support/packed_format.h"
#include "support/plan_tree.h"
#include "support/proof.h"

namespace orvgen::test {
namespace {

using kernelgen::Arithmetic;
using kernelgen::Graph;
using realdft::inverseGraph;
using realdft::kPackedFormats;

std::string lowerName(realdft::PackedFormat format) {
    std::string name = realdft::formatName(format);
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return name;
}

TEST(InverseReal, HasTheCountsOfTheTable) {
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
        for (const auto format : kPackedFormats) {
            CountCheck check("real_inverse");
            long rows = 0;
            for (const DataRow& row : dataTable("real_inverse").rows()) {
                const auto n = static_cast<int>(row.integer("length"));
                const Graph g = inverseGraph(n, format, arithmetic);
                compareOperations(check, row, g);
                const kernelgen::Counts c = kernelgen::countOperations(g);
                check.compare(n, "doublings", row.integer("doublings"), c.doublings);
                EXPECT_EQ(c.signSteps, 0) << n;
                EXPECT_EQ(c.scaleProducts, n);
                EXPECT_EQ(g.deadNodes().size(), 0U) << n;
                EXPECT_EQ(closedOutputSets(g, firstOfSets(n), n), row.integers("closed_sets")) << n;
                // and they are strides through the samples, or at a prime cosets
                const auto sets = outputSets(g);
                for (const long d : row.integers("closed_sets"))
                    for (const ElementSet set : evenSets(static_cast<int>(d), n))
                        EXPECT_TRUE(sets.contains(set)) << n << " sets of " << d;
                ++rows;
            }
            EXPECT_EQ(rows, 63);
            EXPECT_EQ(check.report(), "");
        }
    }
}

TEST(InverseReal, HasTheMethodsOfTheTable) {
    for (const DataRow& row : dataTable("real_inverse").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        // The operations of row 11 are those of a Rader block with the cycle 10.
        const std::string expected = n == 11 ? "rader 10" : row.text("method");
        for (const auto format : kPackedFormats)
            EXPECT_EQ(methodWords(*realdft::inversePlans(format).plan(n)), expected) << n;
    }
}

TEST(InverseReal, IsTheTransformAndReadsItsTermsOnly) {
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
        for (const int n : kLengths) {
            for (const auto format : kPackedFormats) {
                // the formats run one flow but at lengths 7 and 49: Perm by its elements only
                const Graph g = inverseGraph(n, format, arithmetic);
                const PackedFormat packed(lowerName(format), n);
                EXPECT_EQ(elementsRead(g), packed.stored()) << n;
                if (arithmetic == Arithmetic::Double && format == realdft::PackedFormat::Perm)
                    continue;
                const Real error = proofError(g, packed.size(), n, [&](int o, int i) {
                    return packed.at(i) ? inverseCoefficient(n, o, *packed.at(i)) : Real(0);
                });
                EXPECT_LT(error, kProofTolerance) << n;
            }
        }
    }
}

TEST(InverseReal, ObeysTheRulesOfPrecision) {
    for (const int n : kLengths) {
        for (const auto format : kPackedFormats) {
            const PrecisionReport r = checkPrecision(inverseGraph(n, format, Arithmetic::Single));
            EXPECT_EQ(r.complaints, "") << n;
            EXPECT_EQ(r.scaledInDouble, 0) << n;
            EXPECT_EQ(r.scaledInSingle, n);
            EXPECT_EQ(r.carried, unroundedValues(*realdft::inversePlans(format).plan(n))) << n;
        }
    }
}

// Where an even factor runs first, R[0] and R[N/2] go into their sum and their difference and into
// nothing else; behind an odd factor they meet other bins first.
TEST(InverseReal, AddsTheFirstAndTheLastBinFirst) {
    for (const DataRow& row : dataTable("real_inverse").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        if (n % 2 == 1) continue;
        const auto words = row.words("method");
        const bool evenFirst =
            words[0] == "butterfly" || words[0] == "binary" || std::stoi(words.at(1)) % 2 == 0;
        const Graph g = inverseGraph(n, realdft::PackedFormat::Ccs, Arithmetic::Single);
        const auto isEnd = [&](kernelgen::NodeId id) {
            if (id == kernelgen::kNone || g.node(id).op != kernelgen::Op::Input) return false;
            return g.node(id).index == 0 || g.node(id).index == n;
        };
        int sums = 0, differences = 0, others = 0;
        for (const kernelgen::Node& node : g.nodes()) {
            if (!isEnd(node.a) && !isEnd(node.b)) continue;
            const bool both = isEnd(node.a) && isEnd(node.b);
            ++(both && node.op == kernelgen::Op::Add   ? sums
               : both && node.op == kernelgen::Op::Sub ? differences
                                                       : others);
        }
        EXPECT_EQ(sums, evenFirst) << n;
        EXPECT_EQ(differences, evenFirst) << n;
        EXPECT_EQ(others == 0, evenFirst) << n;
    }
}

TEST(InverseReal, DoublesOnlyItsInputs) {
    for (const int n : kLengths) {
        const Graph g = inverseGraph(n, realdft::PackedFormat::Ccs, Arithmetic::Single);
        for (const kernelgen::Node& node : g.nodes()) {
            if (node.op != kernelgen::Op::Mul || !g.constant(node).lane(0).equals(2)) continue;
            EXPECT_EQ(node.type, kernelgen::Type::F32) << n;
            const kernelgen::Node& operand = g.node(node.a);
            EXPECT_EQ(operand.op, kernelgen::Op::Input) << n;
            EXPECT_NE(operand.index, 0) << n;
            if (n % 2 == 0) {
                EXPECT_NE(operand.index, n) << n;
            }
        }
    }
}

// A term that is not doubled goes into one product, whose constant is doubled instead: the sine of
// 60 degrees, at 17 and 34 the rotation by 45 degrees.
TEST(InverseReal, FoldsDoublings) {
    using kernelgen::Node;
    using kernelgen::Op;
    for (const DataRow& row : dataTable("real_inverse").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        const double constant = n == 17 || n == 34 ? 1.4142135623730951 : 1.7320508075688772;
        const Graph g = inverseGraph(n, realdft::PackedFormat::Pack, Arithmetic::Double);
        std::map<int, std::vector<const Node*>> users;  // of the elements of src
        for (const Node& node : g.nodes())
            for (const kernelgen::NodeId id : {node.a, node.b})
                if (id != kernelgen::kNone && g.node(id).op == Op::Input)
                    users[g.node(id).index].push_back(&node);
        long folded = 0;
        for (const auto& [element, list] : users) {
            if (element == 0 || (n % 2 == 0 && element == n - 1)) continue;  // R[0], R[N/2]
            ASSERT_EQ(list.size(), 1U) << n;
            ASSERT_EQ(list[0]->op, Op::Mul) << n;
            if (g.constant(*list[0]).lane(0).equals(2)) continue;
            EXPECT_EQ(g.constant(*list[0]).lane(0).asDouble(), constant) << n;
            ++folded;
        }
        EXPECT_EQ(folded, 2 * ((n - 1) / 2) - row.integer("doublings")) << n;
    }
}

}  // namespace
}  // namespace orvgen::test
