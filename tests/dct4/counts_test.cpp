// Operation counts of all flows, row by row, and the first layer of length 32.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "dct4/counted.h"
#include "dct4/flows/dct4.h"
#include "dct4/flows/joinstage.h"
#include "support/data_table.h"

namespace orvgen::test::dct4 {
namespace {

using namespace orvgen::dct4;

const auto input = [](auto i) { return Counted::input(i); };

template <int N>
Tally tallyOfBody() {
    Counted::tally() = {};
    std::array<int, N> given{};
    ::orvgen::dct4::dct4<N, Counted>(input, [&](auto k, Counted) { ++given[k]; });
    EXPECT_EQ(std::count(given.begin(), given.end(), 1), N);
    return Counted::tally();
}

template <int n>
Tally tallyOfOddFrequency() {
    Counted::tally() = {};
    std::array<int, n / 2> given{};
    oddFrequency<n, Counted>(input, [&](auto c, Complex<Counted>) { ++given[c]; });
    EXPECT_EQ(std::count(given.begin(), given.end(), 1), n / 2);
    return Counted::tally();
}

template <int r>
Tally tallyOfStageTwo() {
    Counted::tally() = {};
    std::array<int, 2 * r> given{};
    stageTwo<r, Counted>(
        [](auto p) {
            return rotate(Complex<Counted>{Counted::input(p), Counted::input(r + p)}, Counted(),
                          Counted());
        },
        [&](auto u, Counted) { ++given[u + r]; });
    EXPECT_EQ(std::count(given.begin(), given.end(), 1), 2 * r);
    return Counted::tally();
}

struct JoinTally {
    Tally tally;
    long twiddles;  // vectors read: cosine and sine of each distinct twiddle
};

template <int R>
JoinTally tallyOfJoin() {
    Counted::tally() = {};
    std::array<int, R> given{};
    long first = 0;
    std::set<int> second;
    const auto turn = [](Complex<Counted> z) { return rotate(z, Counted(), Counted()); };
    joinStage<R, Counted>(
        [](auto s) {
            return Complex<Counted>{Counted::input(s), Counted::input(R + s)};
        },
        [&](Complex<Counted> z) {
            ++first;
            return turn(z);
        },
        [&](Complex<Counted> z, auto k) {
            second.insert(k);
            return turn(z);
        },
        [&](auto f, Complex<Counted>) { ++given[f]; });
    EXPECT_EQ(std::count(given.begin(), given.end(), 1), R);
    return {Counted::tally(), 2 * (first + static_cast<long>(second.size()))};
}

TEST(Counts, OfTheStraightLineBodies) {
    const auto expectRow = [](long N, const Tally& tally) {
        const DataRow& row = dataTable("dct4/bodies").row("length", N);
        EXPECT_EQ(tally.mul, row.integer("multiplications")) << N;
        EXPECT_EQ(tally.add + tally.sub, row.integer("additions")) << N;
        if (row.integer("magnitudes") != 0) {
            EXPECT_EQ(tally.magnitudes.size(), row.integer("magnitudes")) << N;
        }
    };
    expectRow(2, tallyOfBody<2>());
    expectRow(4, tallyOfBody<4>());
    expectRow(8, tallyOfBody<8>());
    expectRow(16, tallyOfBody<16>());
    expectRow(32, tallyOfBody<32>());
    EXPECT_EQ(dataTable("dct4/bodies").rows().size(), 5U);
}

// The only operations on two inputs are those of the listed pairs, each of which lies in one of the
// listed groups of four.
TEST(Counts, FirstLayerOfLength32) {
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
    EXPECT_EQ(tallyOfBody<32>().pairs, pairs);

    // The first results mix the four samples of a group and no others.
    for (const std::vector<long>& group : groups) {
        const long j = group.at(0);
        EXPECT_EQ(group, (std::vector<long>{j, 31 - j, 16 + j, 15 - j}));
        EXPECT_TRUE(pairs.count({static_cast<int>(std::max(group[2], group[3])),
                                 static_cast<int>(std::min(group[2], group[3]))}));
    }
}

TEST(Counts, OfTheOddFrequencyKernels) {
    const auto expectRow = [](long n, const Tally& tally) {
        const DataRow& row = dataTable("dct4/odd_frequency").row("n", n);
        EXPECT_EQ(tally.add, row.integer("add")) << n;
        EXPECT_EQ(tally.sub, row.integer("sub")) << n;
        EXPECT_EQ(tally.mul, row.integer("mul")) << n;
        EXPECT_EQ(n, row.integer("loads"));
        EXPECT_EQ(n, 1 << row.integer("rule"));
    };
    expectRow(2, tallyOfOddFrequency<2>());
    expectRow(4, tallyOfOddFrequency<4>());
    expectRow(8, tallyOfOddFrequency<8>());
    expectRow(16, tallyOfOddFrequency<16>());
    expectRow(32, tallyOfOddFrequency<32>());
    expectRow(64, tallyOfOddFrequency<64>());
    EXPECT_EQ(dataTable("dct4/odd_frequency").rows().size(), 6U);
}

TEST(Counts, OfTheSecondStage) {
    const auto expectRow = [](long r, const Tally& tally) {
        const DataRow& row = dataTable("dct4/stage_two").row("r", r);
        EXPECT_EQ(tally.add, row.integer("add")) << r;
        EXPECT_EQ(tally.sub, row.integer("sub")) << r;
        EXPECT_EQ(tally.mul, row.integer("mul")) << r;
        EXPECT_EQ(2 * r, row.integer("elements"));
        EXPECT_EQ(2 * r, 1 << row.integer("rule"));
    };
    expectRow(1, tallyOfStageTwo<1>());
    expectRow(2, tallyOfStageTwo<2>());
    expectRow(4, tallyOfStageTwo<4>());
    expectRow(8, tallyOfStageTwo<8>());
    expectRow(16, tallyOfStageTwo<16>());
    expectRow(32, tallyOfStageTwo<32>());
    EXPECT_EQ(dataTable("dct4/stage_two").rows().size(), 6U);
}

TEST(Counts, OfTheJoins) {
    const auto expectRow = [](long r, const JoinTally& found) {
        const DataRow& row = dataTable("dct4/joins").row("r", r);
        EXPECT_EQ(found.tally.add, row.integer("add")) << r;
        EXPECT_EQ(found.tally.sub, row.integer("sub")) << r;
        EXPECT_EQ(found.tally.mul, row.integer("mul")) << r;
        EXPECT_EQ(found.twiddles, row.integer("twiddles")) << r;
        EXPECT_EQ(r, 1 << row.integer("rule"));
    };
    expectRow(2, tallyOfJoin<2>());
    expectRow(4, tallyOfJoin<4>());
    expectRow(8, tallyOfJoin<8>());
    expectRow(16, tallyOfJoin<16>());
    expectRow(32, tallyOfJoin<32>());
    EXPECT_EQ(dataTable("dct4/joins").rows().size(), 5U);
}

}  // namespace
}  // namespace orvgen::test::dct4
