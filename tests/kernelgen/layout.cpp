// SPDX-License-Identifier: MIT
// Where spill slots, constants and bodies stand.
#include "kernelgen/layout.h"

#include <gtest/gtest.h>

#include <string>

#include "kernelgen/compile.h"
#include "small_flows.h"

namespace orvgen::test {
namespace {

using namespace orvgen::kernelgen;

// As many loads of each number as `uses` says.
std::vector<MachineInstruction> loads(Base base, const std::vector<int>& uses) {
    std::vector<MachineInstruction> block;
    for (std::size_t i = 0; i < uses.size(); ++i)
        for (int n = 0; n < uses[i]; ++n)
            block.push_back({.op = Opcode::LoadAligned,
                             .dst = 0,
                             .hasAddress = true,
                             .address = {base, static_cast<int>(i)}});
    return block;
}

std::vector<int> offsets(const std::vector<MachineInstruction>& block,
                         const std::vector<int>& uses) {
    std::vector<int> list;
    std::size_t at = 0;
    for (const int n : uses) {
        list.push_back(block[at].address.offset);
        for (int i = 0; i < n; ++i) EXPECT_EQ(block[at++].address.offset, list.back());
    }
    return list;
}

// The most used slot is nearest, each lies on a multiple of its size, and the small ones fill what
// the alignment of the large ones leaves free.
TEST(Layout, OfTheFrame) {
    const std::vector<int> uses = {5, 4, 3, 2, 1};
    Allocation a;
    a.slotSizes = {4, 16, 8, 4, 16};
    a.instructions = loads(Base::Frame, uses);
    layOutFrame(a);
    EXPECT_EQ(offsets(a.instructions, uses), (std::vector<int>{0, 16, 8, 4, 32}));
    EXPECT_EQ(frameBytes(a.slotSizes), 48);
    EXPECT_EQ(frameBytes({}), 0);
    EXPECT_EQ(frameBytes({4}), 16);
    EXPECT_EQ(frameBytes({8, 8, 4}), 32);
    EXPECT_EQ(frameBytes({32, 4}), 64);
}

// Whatever the sizes and uses: aligned, apart from each other, within the frame.
TEST(Layout, OfAnyFrameIsTight) {
    const int sizes[] = {4, 8, 16};
    for (unsigned seed = 1; seed < 200; ++seed) {
        Allocation a;
        std::vector<int> uses;
        unsigned state = seed;
        for (unsigned i = 0; i < 1 + seed % 23; ++i) {
            state = state * 1103515245U + 12345U;
            a.slotSizes.push_back(sizes[state / 65536 % 3]);
            uses.push_back(static_cast<int>(1 + state / 262144 % 5));
        }
        a.instructions = loads(Base::Frame, uses);
        layOutFrame(a);
        const std::vector<int> offset = offsets(a.instructions, uses);
        std::vector<bool> taken(static_cast<std::size_t>(frameBytes(a.slotSizes)), false);
        for (std::size_t i = 0; i < offset.size(); ++i) {
            EXPECT_EQ(offset[i] % a.slotSizes[i], 0);
            for (int b = 0; b < a.slotSizes[i]; ++b) {
                const auto byte = static_cast<std::size_t>(offset[i] + b);
                ASSERT_LT(byte, taken.size());
                EXPECT_FALSE(taken[byte]);
                taken[byte] = true;
            }
        }
    }
}

// The most used constant is nearest.
TEST(Layout, OfThePool) {
    const std::vector<PoolEntry> pool = {
        {Type::F64, {1.5}, ""}, {Type::F64, {2.5}, ""}, {Type::F64, {3.5}, ""}};
    const std::vector<int> uses = {1, 2, 3};
    std::vector<MachineInstruction> block = loads(Base::Pool, uses);
    const PoolLayout layout = layOutPool(pool, block, 16);
    EXPECT_EQ(layout.offset, (std::vector<int>{32, 24, 16}));
    EXPECT_EQ(offsets(block, uses), layout.offset);
    EXPECT_EQ(layout.order, (std::vector<std::size_t>{2, 1, 0}));
    EXPECT_EQ(layout.size, 40);
}

// In the second build at a multiple of 32 bytes, in the first right behind its gate.
TEST(Layout, OfTheBody) {
    const Kernel kernel = smallRealKernel({"s"}, Arithmetic::Double);
    const std::string label = ".L" + kernel.name.exported() + "_body:\n";
    const auto behindGate = [&](const Target& target, const std::string& padding) {
        return compileKernel(kernel, target).assembly.find("\tret\n" + padding + label) !=
               std::string::npos;
    };
    EXPECT_TRUE(behindGate(kLevel3, "\t.p2align\t5\n"));
    EXPECT_TRUE(behindGate(kSse2, ""));
}

}  // namespace
}  // namespace orvgen::test
