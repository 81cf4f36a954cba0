// SPDX-License-Identifier: MIT
// Operation counts of the binary32 flows, laid beside the tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "dft/families.h"
#include "dft/single_lengths.h"
#include "kernelgen/count.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

// Live and executed lanes, with the products by the scale: 2 N, or all lanes of the `stored`
// elements where whole vectors are stored.
kernelgen::LaneCounts compareLanes(CountCheck& check, const KernelFamily& family,
                                   const DataRow& row, long stored) {
    const long n = row.integer("length");
    const auto c = kernelgen::countLanes(family.kernel(static_cast<int>(n)).flow);
    const std::pair<std::string, long> columns[] = {
        {"live_additions", c.liveAdditions},
        {"live_multiplications", c.liveMultiplications + 2 * n},
        {"executed_additions", c.executedAdditions},
        {"executed_multiplications", c.executedMultiplications + 2 * stored}};
    for (const auto& [column, found] : columns)
        check.compare(n, column, row.integer(column), found);
    return c;
}

// The stages of a plan in the order in which data pass: "5, 2 T 4".
std::string stages(const plan::Plan& plan) {
    if (const auto* join = plan.as<plan::GoodThomas>())
        return stages(*join->first[0]) + ", " + stages(*join->second[0]);
    if (const auto* join = plan.as<plan::CooleyTukey>())
        return stages(*join->first[0]) + " T " + stages(*join->second[0]);
    return std::to_string(plan.length);
}

TEST(ComplexBinary32Counts, AreThoseOfTheTableAtCompositeLengths) {
    CountCheck check("complex_f32_composite");
    for (const auto& family : dft::complexSingleFamilies())
        for (const auto& row : dataTable("complex_f32_composite").rows()) {
            const long n = row.integer("length");
            if (n < 6 || !family.info->numbers.has(static_cast<int>(n))) continue;
            const auto kernel = family.kernel(static_cast<int>(n));
            const auto c = kernelgen::countLanes(kernel.flow);
            check.compare(n, "additions", row.integer("additions"), c.distinctAdditions);
            check.compare(n, "multiplications", row.integer("multiplications"),
                          c.distinctMultiplications);
            check.compare(n, "executed_additions", row.integer("executed_additions"),
                          c.executedAdditions);
            check.compare(n, "executed_multiplications", row.integer("executed_multiplications"),
                          c.executedMultiplications);
            EXPECT_EQ(stages(*dft::singleLength(kernel.length).plan), row.text("stages"));
        }
    EXPECT_EQ(check.report(), "");
}

TEST(ComplexBinary32Counts, AreThoseOfTheTablesAtRaderPrimes) {
    CountCheck check("complex_f32_rader");
    CountCheck distinct("complex_f32_factors");
    for (const auto& family : dft::complexSingleFamilies())
        for (const auto& row : dataTable("complex_f32_rader").rows()) {
            const auto c = compareLanes(check, family, row, row.integer("length"));
            const long p = row.integer("length");
            for (const auto& factor : dataTable("complex_f32_factors").rows()) {
                if (factor.integer("factor") != p) continue;
                distinct.compare(p, "alone_additions", factor.integer("alone_additions"),
                                 c.distinctAdditions);
                distinct.compare(p, "alone_multiplications",
                                 factor.integer("alone_multiplications"),
                                 c.distinctMultiplications);
            }
        }
    EXPECT_EQ(check.report(), "");
    for (const std::string& s :
         distinct.countComplaints({"alone_additions", "alone_multiplications"}))
        ADD_FAILURE() << s;
}

// The embedded factors, out of the composite rows that hold them: length 2 p has two of them beside
// p two-point butterflies.
TEST(ComplexBinary32Counts, AreThoseOfTheTableInsideCompositeLengths) {
    CountCheck check("complex_f32_factors");
    const auto forward = dft::complexSingleFamilies()[0];
    for (const auto& row : dataTable("complex_f32_factors").rows()) {
        const int p = static_cast<int>(row.integer("factor"));
        const auto c = kernelgen::countLanes(forward.kernel(2 * p).flow);
        check.compare(p, "embedded_additions", row.integer("embedded_additions"),
                      (c.distinctAdditions - 4 * p) / 2);
        check.compare(p, "embedded_multiplications", row.integer("embedded_multiplications"),
                      c.distinctMultiplications / 2);
    }
    std::string complaints;
    for (const std::string& s :
         check.countComplaints({"embedded_additions", "embedded_multiplications"}))
        complaints += s + "\n";
    EXPECT_EQ(complaints, "");
}

TEST(ComplexBinary32Counts, ProductsThatMixThePartsAreThoseOfTheTable) {
    CountCheck check("complex_f32_mixed_products");
    for (const auto& family : dft::complexSingleFamilies())
        for (const auto& row : dataTable("complex_f32_mixed_products").rows()) {
            const long n = row.integer("length");
            const auto c = kernelgen::countLanes(family.kernel(static_cast<int>(n)).flow);
            check.compare(n, "mixed", row.integer("mixed"), c.mixedMultiplications);
            check.compare(n, "all", row.integer("all"), c.distinctMultiplications);
        }
    EXPECT_EQ(check.report(), "");
}

// Length 26 has two factors 13: every constant of one real lane four times.
TEST(ComplexBinary32Counts, FactorThirteenHasTheConstantsOfTheTable) {
    const auto kernel = dft::complexSingleFamilies()[0].kernel(26);
    std::map<double, long> found;
    for (const auto& node : kernel.flow.nodes())
        if (node.op == kernelgen::Op::Mul)
            ++found[std::abs(static_cast<double>(kernel.flow.constant(node).lane(0).asFloat()))];
    for (const auto& row : dataTable("complex_f32_factor13_constants").rows()) {
        const std::string text = row.text("magnitude");
        const double magnitude = text == "sin(pi/3)"     ? std::sqrt(0.75)
                                 : text == "1/12"        ? 1.0 / 12
                                 : text == "sqrt(13)/12" ? std::sqrt(13.0) / 12
                                                         : row.number("magnitude");
        long products = 0;
        for (auto& [value, count] : found)
            if (std::abs(value - magnitude) < 6e-7) {
                products += count;
                count = 0;
            }
        // Two transforms share the lanes: each product of a real lane runs once for the real and
        // once for the imaginary vector.
        EXPECT_EQ(products, 2 * row.integer("products")) << text;
    }
    for (const auto& [value, count] : found) EXPECT_EQ(count, 0) << value;
}

TEST(ComplexBinary32Counts, AreThoseOfTheTableAtBluesteinPrimes) {
    CountCheck check("complex_f32_bluestein");
    for (const auto& family : dft::complexSingleFamilies())
        for (const auto& row : dataTable("complex_f32_bluestein").rows())
            compareLanes(check, family, row, row.integer("length") + 1);
    EXPECT_EQ(check.report(), "");
}

}  // namespace
}  // namespace orvgen::test
