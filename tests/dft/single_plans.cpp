// How the tables say that the binary32 lengths are made of shorter ones, beside the decompositions
// that the kernels are made of.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>

#include "dft/embedded_rader.h"
#include "dft/families.h"
#include "dft/rader.h"
#include "dft/single_table.h"
#include "flows/number_theory.h"
#include "kernelgen/count.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen {
namespace {

using dft::Join;
using dft::Part;

// The denominators of the twiddles, reduced; quarter turns are none.
void collectDenominators(const Part& part, std::set<std::size_t>& found) {
    if (part->join == Join::None) return;
    collectDenominators(part->first, found);
    collectDenominators(part->second, found);
    if (part->join != Join::CooleyTukey) return;
    for (std::size_t c = 0; c < part->M(); ++c)
        for (std::size_t k = 0; k < part->R(); ++k) {
            const std::size_t num = part->twiddle(c, k);
            const std::size_t den = part->length / std::gcd(num, part->length);
            if (4 % den != 0) found.insert(den);
        }
}

std::set<std::size_t> denominators(const Part& part) {
    std::set<std::size_t> found;
    collectDenominators(part, found);
    return found;
}

// "good-thomas 5x2x3"
std::vector<std::size_t> factors(const std::string& top) {
    std::vector<std::size_t> list;
    for (std::size_t at = top.find(' '); at != std::string::npos; at = top.find('x', at + 1))
        list.push_back(std::stoul(top.substr(at + 1)));
    return list;
}

// A Cooley-Tukey join at the top has twiddles of the whole length. Under a Good-Thomas one every
// twiddle belongs to one of the coprime factors, also where the stages of one stand inside the
// other (18, 50 and 54).
TEST(SinglePlans, TheJoinAtTheTopIsThatOfTheTable) {
    for (const auto& row : test::dataTable("complex_f32_composite").rows()) {
        const auto n = static_cast<std::size_t>(row.integer("length"));
        const std::string top = row.text("top");
        const Part part = dft::singleDecomposition(n);
        EXPECT_EQ(part->length, n);
        const std::set<std::size_t> found = denominators(part);
        if (top == "base") {
            EXPECT_EQ(part->join, Join::None) << n;
            continue;
        }
        const std::vector<std::size_t> list = factors(top);
        EXPECT_EQ(std::accumulate(list.begin(), list.end(), std::size_t{1}, std::multiplies<>()),
                  n);
        if (top.starts_with("cooley-tukey")) {
            EXPECT_EQ(part->join, Join::CooleyTukey) << n;
            EXPECT_EQ(list, (std::vector<std::size_t>{part->R(), part->M()})) << n;
            EXPECT_EQ(found.count(n), 1U) << n;
            continue;
        }
        EXPECT_TRUE(top.starts_with("good-thomas")) << n;
        for (const std::size_t den : found)
            EXPECT_TRUE(std::ranges::any_of(list, [&](std::size_t f) { return f % den == 0; }))
                << n << ": twiddles of order " << den;
        const bool inside = n == 18 || n == 50 || n == 54;
        if (inside) {
            EXPECT_EQ(list[0], 2U) << n;
            EXPECT_EQ(found.count(list[1]), 1U) << n;
            continue;
        }
        EXPECT_EQ(part->join, Join::GoodThomas) << n;
        std::vector<std::size_t> built{part->R(), part->M()};
        if (list.size() == 3) {
            ASSERT_EQ(part->first->join, Join::GoodThomas) << n;
            built = {part->first->R(), part->first->M(), part->M()};
        }
        EXPECT_EQ(built, list) << n;
    }
}

TEST(SinglePlans, CyclesAreThoseOfTheTable) {
    for (const auto& row : test::dataTable("complex_f32_rader").rows()) {
        const long p = row.integer("length");
        const Part cycle = dft::raderCycle(static_cast<std::size_t>(p));
        EXPECT_EQ(static_cast<long>(cycle->length), row.integer("cycle")) << p;
        EXPECT_EQ(flows::smallestRoot(p), row.integer("root"));
        // Every order that is listed occurs, and every twiddle is a power of a listed one.
        const std::set<std::size_t> found = denominators(cycle);
        const std::vector<long> listed = row.integers("twiddle_orders");
        for (const long order : listed)
            EXPECT_EQ(found.count(static_cast<std::size_t>(order)), 1U) << p << " " << order;
        for (const std::size_t den : found)
            EXPECT_TRUE(std::ranges::any_of(
                listed, [&](long order) { return static_cast<std::size_t>(order) % den == 0; }))
                << p << ": twiddles of order " << den;
    }
}

TEST(SinglePlans, FactorsHaveTheFormOfTheTable) {
    for (const auto& row : test::dataTable("complex_f32_factors").rows()) {
        const auto p = static_cast<std::size_t>(row.integer("factor"));
        const std::string form = row.text("form");
        EXPECT_EQ(dft::hasEmbeddedRader(p), form.starts_with("rader")) << p;
        if (form.starts_with("rader")) {
            EXPECT_EQ(form, "rader " + std::to_string(p - 1));
            // The kernel of the prime runs a cycle of the same length.
            EXPECT_EQ(dft::raderCycle(p)->length, p - 1);
        } else {
            EXPECT_EQ(form, p <= 5 ? "butterfly" : "direct");
        }
    }
}

// Butterflies of 2 to 5 points are kernels of their own, in scalar code; those of 7 and 11 points
// stand inside length 2 p, two of them beside p two-point butterflies.
TEST(SinglePlans, ButterfliesHaveTheCountsOfTheTables) {
    for (const auto& family : dft::complexSingleFamilies()) {
        test::CountCheck base("complex_f32_base"), composite("complex_f32_composite");
        test::CountCheck alone("complex_f32_factors");
        for (const auto& row : test::dataTable("complex_f32_base").rows()) {
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
            const auto compare = [&](test::CountCheck& check, const std::string& prefix,
                                     const test::DataRow& r) {
                check.compare(n, prefix + "additions", r.integer(prefix + "additions"), additions);
                check.compare(n, prefix + "multiplications", r.integer(prefix + "multiplications"),
                              multiplications);
            };
            compare(base, "", row);
            const auto* whole = test::dataTable("complex_f32_composite").find("length", n);
            if (whole) compare(composite, "", *whole);
            const auto* factor = test::dataTable("complex_f32_factors").find("factor", n);
            if (factor && !direct) compare(alone, "alone_", *factor);
        }
        EXPECT_EQ(base.report(), "");
        for (const auto* check : {&composite, &alone})
            EXPECT_EQ(check->countComplaints({}), std::vector<std::string>());
    }
}

}  // namespace
}  // namespace orvgen
