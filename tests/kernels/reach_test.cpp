// SPDX-License-Identifier: MIT
// How far a NaN and an infinity reach, at every length of every transform: to every result that the
// definition makes of them, to none that the flow does not compute out of them, and to as many as
// the table says.
#include "reach.h"

#include <gtest/gtest.h>

#include "support/data_table.h"

namespace orvgen::test {
namespace {

class SpecialValues : public testing::TestWithParam<std::size_t> {};

// "input 3, result 7" for every pair of the first that is not one of the second.
std::string missing(const Reached& first, const Reached& second) {
    std::string list;
    for (std::size_t i = 0; i < first.size(); ++i)
        for (std::size_t o = 0; o < first[i].size(); ++o)
            if (first[i][o] && !second[i][o])
                list += "input " + std::to_string(i) + ", result " + std::to_string(o) + "; ";
    return list;
}

Reached either(Reached a, const Reached& b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t o = 0; o < a[i].size(); ++o) a[i][o] = a[i][o] || b[i][o];
    return a;
}

TEST_P(SpecialValues, ReachWhatTheDefinitionAndTheFlowSay) {
    const ListedKernel& k = listedKernels()[GetParam()];
    const Reach reach = reachOf(k);
    const Reached wanted = reachByDefinition(k), flow = reachByFlow(k);
    EXPECT_EQ(missing(wanted, reach.nan), "") << "no NaN";
    EXPECT_EQ(reach.nan, flow);
    const Reached special = either(reach.infinite, reach.undefined);
    EXPECT_EQ(missing(wanted, special), "") << "finite";
    EXPECT_EQ(missing(special, flow), "") << "out of nothing";

    const DataTable& kept = dataTable("reach");
    const DataRow& row = kept.rows().at(GetParam());
    ASSERT_EQ(row.text("name"), k.name);
    EXPECT_EQ(pairsIn(reach.nan), row.integer("nan"));
    EXPECT_EQ(pairsIn(reach.infinite), row.integer("infinite"));
    EXPECT_EQ(pairsIn(reach.undefined), row.integer("undefined"));
}

INSTANTIATE_TEST_SUITE_P(Kernels, SpecialValues,
                         testing::Range(std::size_t{0}, listedKernels().size()),
                         [](const auto& p) { return listedKernels()[p.param].name; });

TEST(SpecialValuesTable, HasEveryKernelOnce) {
    EXPECT_EQ(dataTable("reach").rows().size(), listedKernels().size());
}

}  // namespace
}  // namespace orvgen::test
