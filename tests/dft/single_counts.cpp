// Operation counts of the binary32 flows, laid beside the tables.
#include <gtest/gtest.h>

#include <algorithm>

#include "dft/families.h"
#include "kernelgen/count.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen {
namespace {

// Live and executed lanes, with the products by the scale: 2 N, or all lanes of the `stored`
// elements where whole vectors are stored.
kernelgen::LaneCounts compareLanes(test::CountCheck& check, const kernelgen::Family& family,
                                   const test::DataRow& row, long stored) {
    const long n = row.integer("length");
    const auto c = kernelgen::countLanes(family.kernel(static_cast<int>(n)).flow);
    const std::pair<std::string, long> columns[] = {
        {"live_additions", c.liveAdditions},
        {"live_multiplications", c.liveMultiplications + 2 * n},
        {"executed_additions", c.executedAdditions},
        {"executed_multiplications", c.executedMultiplications + 2 * stored}};
    for (const auto& [column, achieved] : columns)
        check.compare(n, column, row.integer(column), achieved);
    return c;
}

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
            const auto c = compareLanes(check, family, row, row.integer("length"));
            const long p = row.integer("length");
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

TEST(SingleCounts, BluesteinPrimes) {
    test::CountCheck check("complex_f32_bluestein");
    for (const auto& family : dft::complexSingleFamilies())
        for (const auto& row : test::dataTable("complex_f32_bluestein").rows())
            compareLanes(check, family, row, row.integer("length") + 1);
    EXPECT_EQ(check.report(), "");
}

}  // namespace
}  // namespace orvgen
