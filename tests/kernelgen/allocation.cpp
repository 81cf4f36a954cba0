// SPDX-License-Identifier: MIT
// Registers, spills and the order of memory on small blocks whose best answer is known.
#include <gtest/gtest.h>

#include <algorithm>

#include "kernelgen/allocate.h"
#include "written_code.h"

namespace orvgen::test {
namespace {

using namespace orvgen::kernelgen;

long countOf(const Allocation& a, Opcode op) {
    return std::ranges::count(a.instructions, op, &MachineInstruction::op);
}

// Where the block first reads (or writes) this place.
std::size_t placeOf(const Allocation& a, Base base, int offset) {
    for (std::size_t i = 0; i < a.instructions.size(); ++i) {
        const MachineInstruction& m = a.instructions[i];
        if (m.hasAddress && m.address == Address{base, offset}) return i;
    }
    ADD_FAILURE() << "nothing at " << offset;
    return 0;
}

Allocation allocated(const WrittenCode& c, const AllocationOptions& options,
                     const Target& target = kSse2) {
    return allocate(c.code, c.order(), target, options);
}

// `count` values that are all live before the first of them is stored, in the order of making.
WrittenCode manyLive(int count) {
    WrittenCode c;
    std::vector<Register> x, y;
    for (int i = 0; i <= count; ++i) x.push_back(c.load(i));
    for (int i = 0; i < count; ++i)
        y.push_back(c.sum(x[static_cast<std::size_t>(i)], x[static_cast<std::size_t>(count)]));
    for (int i = 0; i < count; ++i) c.store(i, y[static_cast<std::size_t>(i)]);
    return c;
}

TEST(Allocation, SpillsNothingWhileTheRegistersSuffice) {
    const Allocation a = allocated(manyLive(16), {.foldSrc = true});
    EXPECT_EQ(a.spills, 0);
    EXPECT_TRUE(a.slotSizes.empty());
}

// One more value than registers: one store and one load, of the value that is needed last.
TEST(Allocation, SpillsTheValueThatIsNeededLast) {
    const Allocation a = allocated(manyLive(17), {.foldSrc = true});
    EXPECT_EQ(a.spills, 1);
    EXPECT_EQ(a.slotSizes, std::vector<int>{8});
    const auto stored = placeOf(a, Base::Frame, 0);
    // Of the values that stood in registers the last one; sixteen are made when it leaves.
    const MachineInstruction& spill = a.instructions[stored];
    EXPECT_EQ(spill.op, Opcode::StoreSD);
    const auto reload = std::find_if(
        a.instructions.begin() + static_cast<std::ptrdiff_t>(stored) + 1, a.instructions.end(),
        [](const MachineInstruction& m) { return m.hasAddress && m.address.base == Base::Frame; });
    ASSERT_NE(reload, a.instructions.end());
    EXPECT_GT(reload - a.instructions.begin(),
              static_cast<std::ptrdiff_t>(placeOf(a, Base::Dst, 8 * 12)));
    EXPECT_EQ(allocated(manyLive(20), {.foldSrc = true}).spills, 4);
    EXPECT_EQ(allocated(manyLive(32), {.foldSrc = true}, kAvx512).spills, 0);
    EXPECT_EQ(allocated(manyLive(33), {.foldSrc = true}, kAvx512).spills, 1);
}

// What stands in src is dropped and loaded again, never stored.
TEST(Allocation, LoadsSrcAgainRatherThanSpillIt) {
    WrittenCode c;
    std::vector<Register> x;
    for (int i = 0; i < 24; ++i) x.push_back(c.load(i));
    std::vector<Register> sums;
    for (int round = 0; round < 2; ++round) {
        Register sum = x[0];
        for (std::size_t i = 1; i < x.size(); ++i) sum = c.difference(sum, x[i]);
        sums.push_back(sum);
    }
    c.store(0, sums[0]);
    c.store(1, sums[1]);
    EXPECT_EQ(allocated(c, {}).spills, 0);
    const Allocation once = allocated(c, {.loadSrcOnce = true});
    long loads = 0;
    for (const MachineInstruction& m : once.instructions)
        loads += m.hasAddress && m.address.base == Base::Src;
    EXPECT_EQ(loads, 24);
    EXPECT_GT(once.spills, 0);
}

TEST(Allocation, FoldsSrcOnlyWhereItMay) {
    WrittenCode c;
    const Register a = c.load(0), b = c.load(1);
    c.store(0, c.sum(a, b));
    EXPECT_EQ(allocated(c, {.foldSrc = true}).instructions.size(), 3U);   // load, add, store
    EXPECT_EQ(allocated(c, {.foldSrc = false}).instructions.size(), 4U);  // and the other load
}

// y = b + a, where b is wanted again and a is not: a takes the sum if the operands may change
// places, else b is copied first. Three operands never copy.
TEST(Allocation, ExchangesOperandsRatherThanCopy) {
    WrittenCode c;
    const Register x = c.load(0), z = c.load(1);
    const Register a = c.difference(x, z), b = c.difference(z, x);
    const Register y = c.sum(b, a);
    c.store(0, y);
    c.store(1, b);
    EXPECT_EQ(countOf(allocated(c, {}), Opcode::Move) + 1,
              countOf(allocated(c, {.commute = false}), Opcode::Move));
    EXPECT_EQ(countOf(allocated(c, {.commute = false}, kAvx2), Opcode::Move), 0);
}

// src and dst may be one buffer: what a store covers, a value or a zero, is read before.
TEST(Allocation, ReadsBeforeItIsOverwritten) {
    for (const bool zero : {false, true}) {
        for (const bool all : {false, true}) {
            WrittenCode c;
            const Register a = c.load(0), b = c.load(1);
            if (zero) {
                c.storeZero(0);
            } else {
                c.store(0, b);
            }
            c.store(2, c.sum(b, b));
            c.store(1, c.sum(a, a));
            for (const bool fold : {false, true}) {
                const Allocation found = allocated(c, {.foldSrc = fold, .storesEndAllOfSrc = all});
                const std::size_t store = placeOf(found, Base::Dst, 0);
                EXPECT_LT(placeOf(found, Base::Src, 0), store) << zero << all << fold;
                // The other element need not be, unless any overlap is promised.
                const std::size_t other = placeOf(found, Base::Src, 8);
                EXPECT_TRUE(all ? other < store : !zero || other > store) << zero << all << fold;
            }
        }
    }
}

// A conversion leaves the rest of its register as it was, and so waits for whoever wrote it: it is
// made independent where that was not long ago.
TEST(Allocation, ConversionsDoNotWaitForStrangers) {
    const auto clears = [](int since) {
        WrittenCode c;
        const Register single = c.code.fresh();
        c.code.instructions.push_back({.op = Opcode::LoadSS,
                                       .dst = single,
                                       .hasAddress = true,
                                       .address = {Base::Src, 8 * 30}});
        // Fifteen values keep their registers; the conversion gets the one that is left.
        std::vector<Register> kept;
        for (int i = 0; i < 15; ++i) kept.push_back(c.difference(c.load(i + 1), c.load(20)));
        c.store(0, c.difference(c.load(16), c.load(20)));
        for (int i = 0; i < since; ++i) kept[0] = c.difference(kept[0], kept[1]);
        const Register wide = c.code.fresh();
        c.code.instructions.push_back({.op = Opcode::Widen, .dst = wide, .a = single});
        c.store(1, wide);
        for (int i = 0; i < 15; ++i) c.store(2 + i, kept[static_cast<std::size_t>(i)]);
        const Allocation a = allocated(c, {.foldSrc = true, .storesEndAllOfSrc = false});
        return std::ranges::count_if(a.instructions, &MachineInstruction::clearsFirst);
    };
    EXPECT_EQ(clears(0), 1);
    EXPECT_EQ(clears(4), 1);
    EXPECT_EQ(clears(30), 0);
}

}  // namespace
}  // namespace orvgen::test
