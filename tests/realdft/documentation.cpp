// SPDX-License-Identifier: MIT
// The tables of the documentation against what they describe.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "forward_flows.h"
#include "support/plan_tree.h"

namespace orvgen::test {
namespace {

std::set<std::string> linesOf(const std::string& page) {
    std::ifstream file(std::string(ORVGEN_DOCS) + "/" + page);
    std::set<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.insert(line);
    return lines;
}

// "| 6 | Perm | R[0], R[3], R[1], ... |", made of the description of the layouts.
std::string layoutRow(Format format, int n) {
    std::vector<std::string> elements(static_cast<std::size_t>(realdft::elementCount(format, n)));
    const auto put = [&](int place, const std::string& term) {
        elements[static_cast<std::size_t>(place)] = term;
    };
    for (int k = 0; 2 * k <= n; ++k) {
        put(realdft::realPosition(format, n, k), "R[" + std::to_string(k) + "]");
        if (k > 0 && 2 * k < n)
            put(realdft::imaginaryPosition(format, n, k), "I[" + std::to_string(k) + "]");
    }
    for (const int place : realdft::zeroPositions(format, n)) put(place, "0");
    std::string row =
        "| " + std::to_string(n) + " | " + realdft::formatName(format) + " | " + elements[0];
    for (std::size_t i = 1; i < elements.size(); ++i) row += ", " + elements[i];
    return row + " |";
}

TEST(Documentation, ShowsThePackedFormats) {
    const auto lines = linesOf("real.md");
    ASSERT_FALSE(lines.empty());
    for (const int n : {2, 5, 6})
        for (const Format format : realdft::kPackedFormats)
            EXPECT_TRUE(lines.count(layoutRow(format, n))) << layoutRow(format, n);
}

// The lengths at which a value is carried on, as the pages name them.
void expectCarries(const std::string& page, const plan::Table& plans) {
    std::string list;
    for (const int n : kLengths)
        if (unroundedValues(*plans.plan(n)) > 0)
            list += (list.empty() ? "" : ", ") + std::to_string(n);
    bool found = false;
    for (const std::string& line : linesOf(page))
        found = found || line.find("(" + list + ")") != std::string::npos;
    EXPECT_TRUE(found) << page << ": " << list;
}

TEST(Documentation, ListsTheCarriedValues) {
    expectCarries("real.md", realdft::forwardPlans());
    for (const Format format : realdft::kPackedFormats)
        expectCarries("real.md", realdft::inversePlans(format));
}

}  // namespace
}  // namespace orvgen::test
