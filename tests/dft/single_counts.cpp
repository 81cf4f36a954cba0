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

}  // namespace
}  // namespace orvgen
