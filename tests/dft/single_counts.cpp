// Operation counts of the binary32 flows, laid beside the tables.
#include <gtest/gtest.h>

#include <algorithm>

#include "dft/families.h"
#include "kernelgen/count.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen {
namespace {

TEST(SingleCounts, CompositeLengths) {
    test::CountCheck check("complex_f32_composite");
    for (const auto& family : dft::complexSingleFamilies())
        for (const auto& row : test::dataTable("complex_f32_composite").rows()) {
            const long n = row.integer("length");
            if (n < 6 || std::ranges::count(family.lengths, n) == 0) continue;
            const auto kernel = family.kernel(static_cast<int>(n));
            const auto c = kernelgen::countLanes(kernel.flow);
            check.compare(n, "additions", row.integer("additions"), c.distinctAdditions);
            check.compare(n, "multiplications", row.integer("multiplications"),
                          c.distinctMultiplications);
            EXPECT_EQ(kernel.method, row.text("stages"));
        }
    EXPECT_EQ(check.report(), "");
}

TEST(SingleCounts, RaderPrimes) {
    test::CountCheck check("complex_f32_rader");
    test::CountCheck distinct("complex_f32_factors");
    for (const auto& family : dft::complexSingleFamilies())
        for (const auto& row : test::dataTable("complex_f32_rader").rows()) {
            const long p = row.integer("length");
            const auto kernel = family.kernel(static_cast<int>(p));
            const auto c = kernelgen::countLanes(kernel.flow);
            const long scale = 2 * p;
            check.compare(p, "live_additions", row.integer("live_additions"), c.liveAdditions);
            check.compare(p, "live_multiplications", row.integer("live_multiplications"),
                          c.liveMultiplications + scale);
            check.compare(p, "executed_additions", row.integer("executed_additions"),
                          c.executedAdditions);
            check.compare(p, "executed_multiplications", row.integer("executed_multiplications"),
                          c.executedMultiplications + scale);
            for (const auto& factor : test::dataTable("complex_f32_factors").rows()) {
                if (factor.integer("factor") != p) continue;
                distinct.compare(p, "alone_additions", factor.integer("alone_additions"),
                                 c.distinctAdditions);
                distinct.compare(p, "alone_multiplications",
                                 factor.integer("alone_multiplications"),
                                 c.distinctMultiplications);
            }
        }
    EXPECT_EQ(check.report(), "");
    EXPECT_EQ(distinct.report(), "");
}

}  // namespace
}  // namespace orvgen
