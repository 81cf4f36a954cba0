// SPDX-License-Identifier: MIT
// The models of cores on blocks whose cycles can be told by hand.
#include "kernelgen/core_model.h"

#include <gtest/gtest.h>

namespace orvgen::test {
namespace {

using namespace orvgen::kernelgen;

using Block = std::vector<MachineInstruction>;

// Independent of each other; register 0 is known from the start.
Block repeated(Opcode op, int count) {
    Block block;
    for (int i = 0; i < count; ++i) {
        MachineInstruction m{.op = op, .dst = 1 + i % 15, .first = 0, .src = 0};
        if (isLoad(op) || isStore(op)) {
            m.hasAddress = true;
            m.address = {isLoad(op) ? Base::Src : Base::Dst, 16 * i};
            m.first = -1;
        }
        if (isStore(op)) m.dst = -1;
        if (isLoad(op)) m.src = -1;
        block.push_back(m);
    }
    return block;
}

Block operator+(Block a, const Block& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Block chain(Opcode op, int count) {
    Block block = repeated(op, count);
    for (MachineInstruction& m : block) m.dst = m.first = 1;
    return block;
}

// A value that goes through the frame before each sum.
Block throughTheFrame(int count) {
    Block block;
    for (int i = 0; i < count; ++i) {
        block.push_back({.op = Opcode::AddPS, .dst = 1, .first = 1, .src = 0});
        block.push_back({.op = Opcode::StoreAligned,
                         .src = 1,
                         .hasAddress = true,
                         .address = {Base::Frame, 0}});
        block.push_back(
            {.op = Opcode::LoadAligned, .dst = 1, .hasAddress = true, .address = {Base::Frame, 0}});
    }
    return block;
}

struct Row {
    const char* what;
    Block block;
    double three, four;  // cycles that the ports take
};

std::vector<Row> rows() {
    return {
        {"sums on two ports", repeated(Opcode::AddPS, 60), 30, 30},
        {"products on two ports", repeated(Opcode::MulSD, 60), 30, 30},
        {"sums and products share three ports, or have four",
         repeated(Opcode::AddPS, 60) + repeated(Opcode::MulPS, 60), 40, 30},
        {"sums and shuffles share two ports, or have three",
         repeated(Opcode::AddPS, 60) + repeated(Opcode::Shufps, 60), 60, 40},
        {"interleaving on one port, or two", repeated(Opcode::Unpcklps, 60), 60, 30},
        {"conversions on one port, or two", repeated(Opcode::Widen, 60), 60, 30},
        {"loads, three or two a cycle", repeated(Opcode::Load16, 60), 20, 30},
        {"stores, two a cycle", repeated(Opcode::Store16, 60), 30, 30},
        {"bit operations on every port, but the width is the limit", repeated(Opcode::XorPS, 120),
         40, 30},
    };
}

TEST(CoreModel, PortsBoundTheCycles) {
    for (const Row& row : rows()) {
        EXPECT_DOUBLE_EQ(portBound(row.block, kThreePipe, kSse2), row.three) << row.what;
        EXPECT_DOUBLE_EQ(portBound(row.block, kFourPipe, kSse2), row.four) << row.what;
        EXPECT_NEAR(modelCycles(row.block, kThreePipe, kSse2), row.three, 1) << row.what;
        EXPECT_NEAR(modelCycles(row.block, kFourPipe, kSse2), row.four, 1) << row.what;
    }
}

// Nothing but dispatch: twelve instructions of the gate before 60 copies.
TEST(CoreModel, WidthBoundsTheCycles) {
    const Block copies = repeated(Opcode::Move, 60);
    EXPECT_EQ(portBound(copies, kThreePipe, kSse2), 0);
    EXPECT_LE(modelCycles(copies, kThreePipe, kSse2), (60 + 12) / 6.0 + 1);
    EXPECT_LE(modelCycles(copies, kFourPipe, kSse2), (60 + 12) / 8.0 + 1);
}

// A chain that is longer than what waits at a time takes its latency for each link.
TEST(CoreModel, LatenciesAreThoseOfTheCores) {
    const auto latency = [](const auto& links, const CoreModel& core) {
        return (modelCycles(links(800), core, kSse2) - modelCycles(links(400), core, kSse2)) / 400;
    };
    const struct {
        Opcode op;
        int three, four;
    } table[] = {{Opcode::AddPS, 3, 3},   {Opcode::SubSD, 3, 3}, {Opcode::MulPS, 4, 3},
                 {Opcode::MulSD, 4, 3},   {Opcode::Widen, 5, 4}, {Opcode::Shufps, 1, 1},
                 {Opcode::Unpcklps, 1, 1}};
    for (const auto& row : table) {
        // Two operands of which one is the link before; a conversion has one.
        const auto links = [&](int n) { return chain(row.op, n); };
        if (row.three == 1) continue;  // the width hides it
        EXPECT_DOUBLE_EQ(latency(links, kThreePipe), row.three) << rowOf(row.op).mnemonic;
        EXPECT_DOUBLE_EQ(latency(links, kFourPipe), row.four) << rowOf(row.op).mnemonic;
    }
    for (const auto& row : table) EXPECT_EQ(orderLatency(row.op), row.three);
    EXPECT_DOUBLE_EQ(latency(throughTheFrame, kThreePipe), 3 + 5);
    EXPECT_DOUBLE_EQ(latency(throughTheFrame, kFourPipe), 3 + 8);
}

}  // namespace
}  // namespace orvgen::test
