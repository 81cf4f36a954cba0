// SPDX-License-Identifier: MIT
// The table of decompositions in the documentation against the kernels' own.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <string>

#include "dft/families.h"

namespace orvgen::test {
namespace {

// "| 45 | (5, 3) T 3 |" by its length.
std::map<int, std::string> documentedDecompositions() {
    std::ifstream file(std::string(ORVGEN_DOCS) + "/complex-binary32.md");
    std::map<int, std::string> rows;
    for (std::string line; std::getline(file, line);) {
        int n = 0, at = 0;
        if (std::sscanf(line.c_str(), "| %d | %n", &n, &at) != 1 || at == 0) continue;
        std::string row = line.substr(static_cast<std::size_t>(at));
        row.erase(row.find(" |"));
        EXPECT_TRUE(rows.emplace(n, row).second) << n << " twice";
    }
    return rows;
}

TEST(ComplexBinary32Plans, StandInTheDocumentation) {
    const auto rows = documentedDecompositions();
    EXPECT_EQ(rows.size(), kLengths.count());
    const auto families = dft::complexSingleFamilies();
    ASSERT_EQ(families.size(), 2U);
    for (const KernelFamily& family : families)
        for (const int n : kLengths) {
            ASSERT_TRUE(rows.count(n)) << n;
            EXPECT_EQ(rows.at(n), family.kernel(n).method) << family.info->name << " " << n;
        }
}

}  // namespace
}  // namespace orvgen::test
