// SPDX-License-Identifier: MIT
// Operation counts of all flows, row by row, and the first layer of length 32.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "dct4/recording.h"
#include "dct4/visitingorder.h"
#include "support/data_table.h"

namespace orvgen::test::dct4 {
namespace {

using orvgen::dct4::visitingOrder;
using Kind = Recording::Kind;

void expectOperations(const DataRow& row, const Recording& flow) {
    EXPECT_EQ(flow.count(Kind::add), row.integer("add"));
    EXPECT_EQ(flow.count(Kind::subtract), row.integer("sub"));
    EXPECT_EQ(flow.count(Kind::multiply), row.integer("mul"));
}

TEST(Dct4Counts, OfTheStraightLineBodiesAreTheListedOnes) {
    EXPECT_EQ(dataTable("dct4/bodies").rows().size(), 5U);
    for (const DataRow& row : dataTable("dct4/bodies").rows()) {
        const long N = row.integer("length");
        SCOPED_TRACE(N);
        const Recording& flow = bodyRecording(static_cast<int>(N));
        EXPECT_EQ(flow.count(Kind::multiply), row.integer("multiplications"));
        EXPECT_EQ(flow.count(Kind::add) + flow.count(Kind::subtract), row.integer("additions"));
        EXPECT_EQ(flow.inputs, N);
        std::set<double> magnitudes;
        for (const Recording::Angle& angle : flow.constants) {
            magnitudes.insert(std::abs(static_cast<double>(valueOf(angle))));
        }
        if (row.integer("magnitudes") != 0) {
            EXPECT_EQ(magnitudes.size(), row.integer("magnitudes"));
        }
    }
}

TEST(Dct4Counts, OfTheOddFrequencyKernelsAreTheListedOnes) {
    EXPECT_EQ(dataTable("dct4/odd_frequency").rows().size(), 6U);
    for (const DataRow& row : dataTable("dct4/odd_frequency").rows()) {
        const long n = row.integer("n");
        SCOPED_TRACE(n);
        EXPECT_EQ(n, 1 << row.integer("rule"));
        const Recording& flow = oddFrequencyRecording(static_cast<int>(n));
        expectOperations(row, flow);
        EXPECT_EQ(flow.order.size(), row.integer("loads"));
        EXPECT_EQ(flow.inputs, n);
    }
}

TEST(Dct4Counts, OfTheSecondStageAreTheListedOnes) {
    EXPECT_EQ(dataTable("dct4/stage_two").rows().size(), 6U);
    for (const DataRow& row : dataTable("dct4/stage_two").rows()) {
        const long r = row.integer("r");
        SCOPED_TRACE(r);
        EXPECT_EQ(2 * r, 1 << row.integer("rule"));
        const Recording& flow = stageTwoRecording(static_cast<int>(r));
        expectOperations(row, flow);
        EXPECT_EQ(flow.results.size(), row.integer("elements"));
        // Every value and every number of its table once.
        EXPECT_EQ(flow.order.size(), 2 * row.integer("elements"));
        EXPECT_EQ(flow.inputs, 2 * row.integer("elements"));
    }
}

// The table of a node is filled in this order and read straight through.
TEST(Dct4SecondStageFlows, AskForTheirInputsInTheVisitingOrder) {
    for (const int r : {1, 2, 4, 8, 16, 32}) {
        const std::vector<int>& order = stageTwoRecording(r).order;
        for (int position = 0; position < r; ++position) {
            const int p = visitingOrder(r, position), twiddle = 2 * (r + position);
            const auto at = order.begin() + 4 * position;
            EXPECT_EQ(std::vector<int>(at, at + 4),
                      (std::vector<int>{p, r + p, twiddle, twiddle + 1}));
        }
    }
}

TEST(Dct4Counts, OfTheJoinsAreTheListedOnes) {
    EXPECT_EQ(dataTable("dct4/joins").rows().size(), 5U);
    for (const DataRow& row : dataTable("dct4/joins").rows()) {
        const long r = row.integer("r");
        SCOPED_TRACE(r);
        EXPECT_EQ(r, 1 << row.integer("rule"));
        const Recording& flow = joinRecording(static_cast<int>(r));
        expectOperations(row, flow);
        EXPECT_EQ(flow.inputs - 2 * r, row.integer("twiddles"));
    }
}

// The only operations on two inputs are those of the listed pairs, each of which lies in one of the
// listed groups of four.
TEST(Dct4Length32, PairsItsSamplesAsListed) {
    std::set<std::pair<int, int>> pairs;
    std::vector<std::vector<long>> groups;
    for (const DataRow& row : dataTable("dct4/body32_pairs").rows()) {
        const std::vector<long> samples = row.integers("samples");
        if (row.text("kind") == "group") {
            groups.push_back(samples);
        } else {
            pairs.insert({static_cast<int>(samples.at(0)), static_cast<int>(samples.at(1))});
        }
    }
    EXPECT_EQ(pairs.size(), 8U);
    EXPECT_EQ(groups.size(), 8U);

    const Recording& flow = bodyRecording(32);
    std::set<std::pair<int, int>> met;
    for (const Recording::Value& value : flow.values) {
        if (value.kind != Kind::add && value.kind != Kind::subtract) continue;
        const Recording::Value& a = flow.values[static_cast<std::size_t>(value.a)];
        const Recording::Value& b = flow.values[static_cast<std::size_t>(value.b)];
        if (a.kind != Kind::input || b.kind != Kind::input) continue;
        met.insert({std::max(a.a, b.a), std::min(a.a, b.a)});
    }
    EXPECT_EQ(met, pairs);

    // The first results mix the four samples of a group and no others.
    for (const std::vector<long>& group : groups) {
        const long j = group.at(0);
        EXPECT_EQ(group, (std::vector<long>{j, 31 - j, 16 + j, 15 - j}));
        EXPECT_TRUE(pairs.count({static_cast<int>(std::max(group[2], group[3])),
                                 static_cast<int>(std::min(group[2], group[3]))}));
    }
}

}  // namespace
}  // namespace orvgen::test::dct4
