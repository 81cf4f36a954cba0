// SPDX-License-Identifier: MIT
// Orders of small blocks, and what the best of them makes of the registers.
#include "kernelgen/order.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kernelgen/block.h"
#include "written_code.h"

namespace orvgen::test {
namespace {

using namespace orvgen::kernelgen;

// The most values, loads apart, that are live at once.
int pressure(const Code& code, const std::vector<int>& order) {
    std::vector<int> users(static_cast<std::size_t>(code.registers), 0);
    const auto operands = [](const Instruction& i) {
        std::vector<Register> list;
        for (const Register r : {i.a, i.b})
            if (r != kNoRegister && (list.empty() || list[0] != r)) list.push_back(r);
        return list;
    };
    for (const Instruction& i : code.instructions)
        for (const Register r : operands(i)) ++users[static_cast<std::size_t>(r)];
    std::vector<bool> computed(users.size(), false);
    int live = 0, most = 0;
    for (const int at : order) {
        const Instruction& i = code.instructions[static_cast<std::size_t>(at)];
        for (const Register r : operands(i)) {
            const auto n = static_cast<std::size_t>(r);
            if (--users[n] == 0 && computed[n]) --live;
        }
        if (i.dst == kNoRegister || isLoad(i.op)) continue;
        computed[static_cast<std::size_t>(i.dst)] = true;
        most = std::max(most, ++live);
    }
    return most;
}

// All sums of pairs, then all sums of these, and so on: 2^levels elements to one.
WrittenCode tree(int levels) {
    WrittenCode c;
    std::vector<Register> row;
    for (int i = 0; i < 1 << levels; ++i) row.push_back(c.load(i));
    while (row.size() > 1) {
        std::vector<Register> next;
        for (std::size_t i = 0; i < row.size(); i += 2) next.push_back(c.sum(row[i], row[i + 1]));
        row = next;
    }
    c.store(0, row[0]);
    return c;
}

// Independent sums, all made before the first is stored.
WrittenCode independent(int count) {
    WrittenCode c;
    std::vector<Register> x, y;
    for (int i = 0; i < 2 * count; ++i) x.push_back(c.load(i));
    for (std::size_t i = 0; i < x.size(); i += 2) y.push_back(c.difference(x[i], x[i + 1]));
    for (int i = 0; i < count; ++i) c.store(i, y[static_cast<std::size_t>(i)]);
    return c;
}

int leastPressure(const Code& code) {
    int least = 1 << 20;
    for (const std::vector<int>& order : candidateOrders(code, kSse2))
        least = std::min(least, pressure(code, order));
    return least;
}

TEST(Orders, ListEveryInstructionBehindItsOperands) {
    for (const WrittenCode& c : {tree(6), independent(30)}) {
        for (const std::vector<int>& order : candidateOrders(c.code, kSse2)) {
            std::vector<int> sorted = order;
            std::ranges::sort(sorted);
            ASSERT_EQ(sorted, c.order());
            std::vector<bool> defined(static_cast<std::size_t>(c.code.registers), false);
            for (const int at : order) {
                const Instruction& i = c.code.instructions[static_cast<std::size_t>(at)];
                for (const Register r : {i.a, i.b})
                    ASSERT_TRUE(r == kNoRegister || defined[static_cast<std::size_t>(r)]);
                if (i.dst != kNoRegister) defined[static_cast<std::size_t>(i.dst)] = true;
            }
        }
    }
}

// A binary tree whose leaves stand in memory takes as many registers as it has levels (Sethi and
// Ullman 1970); as it is written it takes half as many as there are leaves.
TEST(Orders, ComputeATreeInAsFewRegistersAsPossible) {
    const WrittenCode c = tree(6);
    EXPECT_EQ(pressure(c.code, c.order()), 32);
    EXPECT_EQ(leastPressure(c.code), 6);
}

TEST(Orders, FinishWhatIsIndependentOneByOne) {
    const WrittenCode c = independent(30);
    EXPECT_EQ(pressure(c.code, c.order()), 30);
    EXPECT_EQ(leastPressure(c.code), 1);
}

// Nothing is spilled or copied, and the cycles are those that the ports allow: of 63 sums on two
// ports, of 30 differences, 60 loads and 30 stores.
TEST(Blocks, AreAsShortAsTheyCanBe) {
    const AllocationOptions options{.foldSrc = true};
    const Block sums = compileBlock(tree(6).code, kSse2, options);
    EXPECT_EQ(sums.spills, 0);
    EXPECT_EQ(sums.instructions.size(), 32U + 63U + 1U);
    EXPECT_DOUBLE_EQ(sums.portBound, (63 / 2.0 + 64 / 2.0) / 2);
    EXPECT_LE(sums.modelCycles, sums.portBound + 2);
    const Block differences =
        compileBlock(independent(30).code, kSse2, {.foldSrc = true, .storesEndAllOfSrc = false});
    EXPECT_EQ(differences.spills, 0);
    EXPECT_EQ(differences.instructions.size(), 90U);
    EXPECT_LE(differences.modelCycles, differences.portBound + 2);
    EXPECT_EQ(differences.frameBytes, 0);
}

// Seventeen live values, whatever the order, do not fit.
TEST(Blocks, RespectTheLimitOfTheFrame) {
    WrittenCode c;
    std::vector<Register> x, y;
    for (int i = 0; i < 20; ++i) x.push_back(c.load(i));
    for (std::size_t i = 0; i < x.size(); ++i)
        y.push_back(c.difference(x[i], x[(i + 1) % x.size()]));
    for (int k = 0; k < 20; ++k) {
        Register all = y[static_cast<std::size_t>(k)];
        for (std::size_t i = 1; i < y.size(); ++i)
            all = c.difference(all, y[(static_cast<std::size_t>(k) + i) % y.size()]);
        c.store(k, all);
    }
    const AllocationOptions options{.loadSrcOnce = true};
    const Block any = compileBlock(c.code, kSse2, options);
    EXPECT_GT(any.frameBytes, 0);
    EXPECT_EQ(any.frameBytes % 16, 0);
    EXPECT_EQ(compileBlock(c.code, kSse2, options, any.frameBytes).cost, any.cost);
    EXPECT_THROW(compileBlock(c.code, kSse2, options, 0), std::runtime_error);
}

}  // namespace
}  // namespace orvgen::test
