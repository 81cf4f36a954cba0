// SPDX-License-Identifier: MIT
// The forward real flows beside the table of their counts, row by row and column by column, and
// beside the matrix of the transform.
#include <gtest/gtest.h>

#include "forward_flows.h"
#include "kernelgen/count.h"
#include "support/closed_sets.h"
#include "support/data_table.h"
#include "support/operation_counts.h"
#include "support/packed_format.h"
#include "support/plan_tree.h"
#include "support/proof.h"

namespace orvgen::test {
namespace {

using kernelgen::Counts;

TEST(ForwardCounts, AreThoseOfTheTableInEveryFormatAndType) {
    const DataTable& table = dataTable("real_forward");
    ASSERT_EQ(table.rows().size(), 63U);
    for (const Format format : realdft::kPackedFormats) {
        for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
            CountCheck check("real_forward");
            for (const DataRow& row : table.rows()) {
                const auto n = static_cast<int>(row.integer("length"));
                const Graph g = realdft::forwardGraph(n, format, arithmetic);
                compareOperations(check, row, g);
                const Counts c = kernelgen::countOperations(g);
                check.compare(n, "sign_steps", row.integer("sign_steps"), c.signSteps);
                EXPECT_EQ(c.doublings, 0) << n;
            }
            EXPECT_EQ(check.report(), "") << realdft::formatName(format);
        }
    }
}

TEST(ForwardCounts, AreThoseOfClosedSets) {
    for (const DataRow& row : dataTable("real_forward").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
            const Graph g = realdft::forwardGraph(n, Format::Pack, arithmetic);
            EXPECT_EQ(closedInputSets(g, firstOfSets(n), n), row.integers("closed_sets")) << n;
            // and they are strides through the samples, or at a prime cosets
            const auto sets = inputSets(g);
            for (const long d : row.integers("closed_sets"))
                for (const ElementSet set : evenSets(static_cast<int>(d), n))
                    EXPECT_TRUE(sets.contains(set)) << n << " sets of " << d;
        }
    }
}

TEST(ForwardCounts, ComeFromTheMethodsOfTheTable) {
    for (const DataRow& row : dataTable("real_forward").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        EXPECT_EQ(methodWords(*realdft::forwardPlans().plan(n)), row.text("method"));
    }
}

// The layouts come from the table of positions here, not from the product's own description.
TEST(ForwardProof, AcceptsEveryLengthAndFormat) {
    const std::vector<std::string> names = {"ccs", "pack", "perm"};
    for (const int n : kLengths) {
        for (std::size_t f = 0; f < names.size(); ++f) {
            const test::PackedFormat layout(names[f], n);
            const auto matrix = [&](int output, int input) {
                const auto& term = layout.at(output);
                return term ? forwardCoefficient(n, *term, input) : Real(0);
            };
            for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
                const Graph g = realdft::forwardGraph(n, realdft::kPackedFormats[f], arithmetic);
                EXPECT_LT(proofError(g, n, layout.size(), matrix), kProofTolerance)
                    << n << " " << names[f];
                EXPECT_TRUE(g.deadNodes().empty()) << n;
                EXPECT_EQ(elementsRead(g).size(), static_cast<std::size_t>(n));
            }
        }
    }
}

// The product's description of the layouts against the tables.
TEST(PackedFormats, AgreeWithTheTables) {
    const std::vector<std::string> names = {"ccs", "pack", "perm"};
    for (const int n : kLengths) {
        for (std::size_t f = 0; f < names.size(); ++f) {
            const Format format = realdft::kPackedFormats[f];
            const test::PackedFormat layout(names[f], n);
            ASSERT_EQ(realdft::elementCount(format, n), layout.size());
            std::vector<int> zeros;
            for (int i = 0; i < layout.size(); ++i) {
                const auto& term = layout.at(i);
                if (!term)
                    zeros.push_back(i);
                else if (term->imaginary)
                    EXPECT_EQ(realdft::imaginaryPosition(format, n, term->bin), i);
                else
                    EXPECT_EQ(realdft::realPosition(format, n, term->bin), i);
            }
            EXPECT_EQ(realdft::zeroPositions(format, n), zeros);
        }
    }
}

}  // namespace
}  // namespace orvgen::test
