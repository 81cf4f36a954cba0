// SPDX-License-Identifier: MIT
// How the tables say that the binary32 lengths are made of shorter ones, beside the decompositions
// that the kernels are made of.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>

#include "dft/families.h"
#include "dft/single_lengths.h"
#include "flows/number_theory.h"
#include "kernelgen/count.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

using plan::CooleyTukey;
using plan::GoodThomas;
using plan::Plan;

// The factors of a join, the one that runs first first; a block has none.
std::vector<plan::PlanPtr> factors(const Plan& plan) {
    if (const auto* join = plan.as<GoodThomas>()) return {join->first[0], join->second[0]};
    if (const auto* join = plan.as<CooleyTukey>()) return {join->first[0], join->second[0]};
    return {};
}
std::vector<long> lengths(const std::vector<plan::PlanPtr>& plans) {
    std::vector<long> list;
    for (const auto& plan : plans) list.push_back(plan->length);
    return list;
}

// The denominators of the twiddles, reduced; quarter turns are none.
void collectDenominators(const Plan& plan, std::set<long>& found) {
    for (const auto& factor : factors(plan)) collectDenominators(*factor, found);
    const auto* join = plan.as<CooleyTukey>();
    if (!join) return;
    for (const int c : join->columns)
        for (const int k : join->rows) {
            const long den = plan.length / std::gcd(c * k, plan.length);
            if (4 % den != 0) found.insert(den);
        }
}

std::set<long> denominators(const Plan& plan) {
    std::set<long> found;
    collectDenominators(plan, found);
    return found;
}

// "good-thomas 5x2x3"
std::vector<long> factorsNamed(const std::string& top) {
    std::vector<long> list;
    for (std::size_t at = top.find(' '); at != std::string::npos; at = top.find('x', at + 1))
        list.push_back(std::stol(top.substr(at + 1)));
    return list;
}

// A Cooley-Tukey join at the top has twiddles of the whole length. Under a Good-Thomas one every
// twiddle belongs to one of the coprime factors, also where the stages of one stand inside the
// other (18, 50 and 54).
TEST(ComplexBinary32Plans, TheJoinAtTheTopIsThatOfTheTable) {
    for (const auto& row : dataTable("complex_f32_composite").rows()) {
        const long n = row.integer("length");
        const std::string top = row.text("top");
        const Plan& plan = *dft::singleLength(static_cast<int>(n)).plan;
        EXPECT_EQ(plan.length, n);
        if (top == "base") {
            EXPECT_TRUE(plan.as<plan::Block>()) << n;
            continue;
        }
        const std::vector<long> named = factorsNamed(top);
        EXPECT_EQ(std::accumulate(named.begin(), named.end(), 1L, std::multiplies<>()), n);
        const std::set<long> found = denominators(plan);
        if (top.starts_with("cooley-tukey")) {
            EXPECT_TRUE(plan.as<CooleyTukey>()) << n;
            EXPECT_EQ(lengths(factors(plan)), named) << n;
            EXPECT_EQ(found.count(n), 1U) << n;
            continue;
        }
        EXPECT_TRUE(top.starts_with("good-thomas")) << n;
        for (const long den : found)
            EXPECT_TRUE(std::ranges::any_of(named, [&](long f) { return f % den == 0; }))
                << n << ": twiddles of order " << den;
        const bool inside = n == 18 || n == 50 || n == 54;
        if (inside) {
            EXPECT_EQ(named[0], 2) << n;
            EXPECT_EQ(found.count(named[1]), 1U) << n;
            continue;
        }
        EXPECT_TRUE(plan.as<GoodThomas>()) << n;
        std::vector<plan::PlanPtr> built = factors(plan);
        if (named.size() == 3) {
            ASSERT_TRUE(built[0]->as<GoodThomas>()) << n;
            const auto inner = factors(*built[0]);
            built = {inner[0], inner[1], built[1]};
        }
        EXPECT_EQ(lengths(built), named) << n;
    }
}

TEST(ComplexBinary32Plans, CyclesAreThoseOfTheTable) {
    for (const auto& row : dataTable("complex_f32_rader").rows()) {
        const long p = row.integer("length");
        const auto* rader = dft::singleLength(static_cast<int>(p)).plan->as<plan::ComplexRader>();
        ASSERT_TRUE(rader) << p;
        EXPECT_EQ(rader->cycle->length, row.integer("cycle")) << p;
        EXPECT_EQ(flows::smallestRoot(p), row.integer("root"));
        // Every order that is listed occurs, and every twiddle is a power of a listed one.
        const std::set<long> found = denominators(*rader->cycle);
        const std::vector<long> listed = row.integers("twiddle_orders");
        for (const long order : listed) EXPECT_EQ(found.count(order), 1U) << p << " " << order;
        for (const long den : found)
            EXPECT_TRUE(std::ranges::any_of(listed, [&](long order) { return order % den == 0; }))
                << p << ": twiddles of order " << den;
    }
}

// Every block of p points in a plan.
void collectBlocks(const Plan& plan, int p, std::vector<const Plan*>& found) {
    if (plan.length == p) found.push_back(&plan);
    for (const auto& factor : factors(plan)) collectBlocks(*factor, p, found);
}

TEST(ComplexBinary32Plans, PrimeFactorsHaveTheFormOfTheTable) {
    for (const auto& row : dataTable("complex_f32_factors").rows()) {
        const auto p = static_cast<int>(row.integer("factor"));
        const std::string form = row.text("form");
        const bool isRader = form.starts_with("rader");
        EXPECT_EQ(form, isRader  ? "rader " + std::to_string(p - 1)
                        : p <= 5 ? "butterfly"
                                 : "direct");
        std::vector<const Plan*> blocks;
        for (const long n : dataTable("complex_f32_composite").list("length"))
            if (n != p) collectBlocks(*dft::singleLength(static_cast<int>(n)).plan, p, blocks);
        EXPECT_FALSE(blocks.empty()) << p;
        for (const Plan* block : blocks) {
            EXPECT_EQ(block->as<plan::LaneRader>() != nullptr, isRader) << p;
            EXPECT_EQ(block->as<plan::Block>() != nullptr, !isRader) << p;
        }
    }
}

// Butterflies of 2 to 5 points are kernels of their own, in scalar code; those of 7 and 11 points
// stand inside length 2 p, two of them beside p two-point butterflies.
TEST(ComplexBinary32Plans, ButterfliesHaveTheCountsOfTheTables) {
    for (const auto& family : dft::complexSingleFamilies()) {
        CountCheck base("complex_f32_base"), composite("complex_f32_composite");
        CountCheck alone("complex_f32_factors");
        for (const auto& row : dataTable("complex_f32_base").rows()) {
            const int n = static_cast<int>(row.integer("length"));
            const bool direct = row.text("form") == "direct";
            EXPECT_EQ(direct, n > 5);
            long additions = 0, multiplications = 0;
            if (direct) {
                const auto c = kernelgen::countLanes(family.kernel(2 * n).flow);
                additions = (c.distinctAdditions - 4 * n) / 2;
                multiplications = c.distinctMultiplications / 2;
            } else {
                const auto c = kernelgen::countOperations(family.kernel(n).flow);
                additions = c.additions;
                multiplications = c.constantProducts + c.doublings;
                EXPECT_EQ(c.scaleProducts, 2 * n);
                EXPECT_EQ(c.signSteps, 0);
            }
            const auto compare = [&](CountCheck& check, const std::string& prefix,
                                     const DataRow& r) {
                check.compare(n, prefix + "additions", r.integer(prefix + "additions"), additions);
                check.compare(n, prefix + "multiplications", r.integer(prefix + "multiplications"),
                              multiplications);
            };
            compare(base, "", row);
            const auto* whole = dataTable("complex_f32_composite").find("length", n);
            if (whole) compare(composite, "", *whole);
            const auto* factor = dataTable("complex_f32_factors").find("factor", n);
            if (factor && !direct) compare(alone, "alone_", *factor);
        }
        EXPECT_EQ(base.report(), "");
        for (const auto* check : {&composite, &alone})
            EXPECT_EQ(check->countComplaints({}), std::vector<std::string>());
    }
}

}  // namespace
}  // namespace orvgen::test
