// SPDX-License-Identifier: MIT
// How many shuffles bring four lanes together.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "kernelgen/lower.h"

namespace orvgen::test {
namespace {

using namespace orvgen::kernelgen;

using Lanes = std::array<Lane, 4>;

bool isShuffle(Opcode op) {
    const Unit unit = rowOf(op).unit;
    return !isLoad(op) && (unit == Unit::Shuffle || unit == Unit::Interleave);
}

// Vectors that are sums, so that nothing but shuffles can bring their lanes together; the lanes
// that are asked for are stored as two neighbouring elements each.
class Lowered {
  public:
    static constexpr int sources = 4;

    // The shuffles beyond those of the loads and of the stores, which are the same without packing.
    static long shuffles(const std::vector<Lanes>& wanted) {
        return count(wanted) - count(std::vector<Lanes>(wanted.size(), identity(0)));
    }
    static Lanes identity(int vector) {
        return {{{vector, 0}, {vector, 1}, {vector, 2}, {vector, 3}}};
    }

  private:
    static long count(const std::vector<Lanes>& wanted) {
        Graph g(Arithmetic::SingleLanes);
        std::vector<NodeId> sums;
        for (int s = 0; s < sources; ++s) {
            const auto vector = [&](int first, int part) {
                Lanes lanes;
                for (int l = 0; l < 4; ++l)
                    lanes[static_cast<std::size_t>(l)] = {g.input(first + l), part};
                return g.pack(lanes);
            };
            sums.push_back(g.add(vector(8 * s, 0), vector(8 * s + 4, 1)));
        }
        int element = 0;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            Lanes lanes = wanted[i];
            for (Lane& lane : lanes) lane.node = sums[static_cast<std::size_t>(lane.node)];
            // Different for each, so that equal ones are not one node.
            NodeId value = g.pack(lanes);
            for (std::size_t k = 0; k <= i; ++k) value = g.add(value, sums[k % sums.size()]);
            for (int l = 0; l < 4; ++l) g.output(element++, {value, l}, {value, l});
        }
        const Code code = lower(g, {});
        return std::ranges::count_if(code.instructions,
                                     [](const Instruction& i) { return isShuffle(i.op); });
    }
};

TEST(Shuffles, AreNoneForAVectorAsItStands) {
    EXPECT_EQ(Lowered::shuffles({Lowered::identity(1)}), 0);
}

TEST(Shuffles, AreOneForWhatOneCanMake) {
    const std::vector<Lanes> one = {
        {{{0, 0}, {0, 1}, {1, 0}, {1, 1}}},  // lower halves
        {{{0, 2}, {0, 3}, {1, 2}, {1, 3}}},  // upper halves
        {{{0, 0}, {1, 0}, {0, 1}, {1, 1}}},  // interleaved, low
        {{{0, 2}, {1, 2}, {0, 3}, {1, 3}}},  // interleaved, high
        {{{0, 3}, {0, 1}, {1, 2}, {1, 2}}},  // two and two of any
        {{{2, 3}, {2, 2}, {2, 1}, {2, 0}}},  // within one vector
        {{{3, 1}, {3, 1}, {3, 1}, {3, 1}}},  // one lane everywhere
    };
    for (const Lanes& lanes : one) EXPECT_EQ(Lowered::shuffles({lanes}), 1);
}

// Two intermediates of two vectors each, and one that joins them.
TEST(Shuffles, AreThreeForLanesOfFourVectors) {
    EXPECT_EQ(Lowered::shuffles({{{{0, 0}, {1, 0}, {2, 0}, {3, 0}}}}), 3);
    EXPECT_EQ(Lowered::shuffles({{{{0, 3}, {1, 0}, {2, 2}, {3, 1}}}}), 3);
}

// Four vectors that transpose four others: four intermediates, each used twice.
TEST(Shuffles, AreEightForATranspose) {
    std::vector<Lanes> columns;
    for (int l = 0; l < 4; ++l) columns.push_back({{{0, l}, {1, l}, {2, l}, {3, l}}});
    EXPECT_EQ(Lowered::shuffles(columns), 8);
}

// Half of it: two intermediates of the lower halves, two that join.
TEST(Shuffles, AreFourForHalfATranspose) {
    std::vector<Lanes> columns;
    for (int l = 0; l < 2; ++l) columns.push_back({{{0, l}, {1, l}, {2, l}, {3, l}}});
    EXPECT_EQ(Lowered::shuffles(columns), 4);
}

}  // namespace
}  // namespace orvgen::test
