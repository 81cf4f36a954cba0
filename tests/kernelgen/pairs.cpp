// SPDX-License-Identifier: MIT
// Pairs of scalar operations on small blocks whose best form is known, and what holds for all.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "kernelgen/compile.h"
#include "kernelgen/lower.h"
#include "kernelgen/pair.h"
#include "small_flows.h"
#include "written_code.h"

namespace orvgen::test {
namespace {

using namespace orvgen::kernelgen;

std::vector<Opcode> opcodes(const Code& code) {
    std::vector<Opcode> all;
    for (const Instruction& i : code.instructions) all.push_back(i.op);
    return all;
}

// The first form, on two lanes; fails if there is none.
Code pairsOf(const WrittenCode& c) {
    const std::vector<Code> forms = pairForms(c.code);
    if (forms.empty()) {
        ADD_FAILURE() << "nothing is alike";
        return {};
    }
    return forms.front();
}

TEST(Pairs, NeighboursTakeOneInstructionEach) {
    WrittenCode c;
    const Register a = c.load(0), b = c.load(1), x = c.load(2), y = c.load(3);
    c.store(4, c.sum(a, x));
    c.store(5, c.sum(b, y));
    const Code code = pairsOf(c);
    EXPECT_EQ(opcodes(code),
              (std::vector{Opcode::Load16, Opcode::Load16, Opcode::AddPD, Opcode::Store16}));
    EXPECT_EQ(code.instructions.back().address, (Address{Base::Dst, 32}));
}

TEST(Pairs, OperandsOfSumsChangePlacesWhereThatSavesShuffles) {
    WrittenCode c;
    const Register a = c.load(0), b = c.load(1), x = c.load(2), y = c.load(3);
    c.store(0, c.sum(a, x));
    c.store(1, c.sum(y, b));
    EXPECT_EQ(opcodes(pairsOf(c)),
              (std::vector{Opcode::Load16, Opcode::Load16, Opcode::AddPD, Opcode::Store16}));
}

TEST(Pairs, ElementsApartAreLoadedByHalves) {
    WrittenCode c;
    const Register a = c.load(0), b = c.load(5), x = c.load(2), y = c.load(3);
    c.store(0, c.difference(a, x));
    c.store(3, c.difference(b, y));
    const Code code = pairsOf(c);
    EXPECT_EQ(opcodes(code), (std::vector{Opcode::LoadHalves, Opcode::Load16, Opcode::SubPD,
                                          Opcode::StoreSD, Opcode::StoreHigh}));
    EXPECT_EQ(code.instructions.front().high, (Address{Base::Src, 40}));
}

TEST(Pairs, WhatIsNotAlikeStaysAlone) {
    WrittenCode c;
    const Register a = c.load(0), b = c.load(1);
    c.store(0, c.sum(a, b));
    c.store(1, c.difference(a, b));
    EXPECT_TRUE(pairForms(c.code).empty());
}

TEST(Pairs, NothingIsPairedWithWhatItWaitsFor) {
    WrittenCode c;
    Register x = c.load(0);
    for (int i = 1; i < 6; ++i) x = c.sum(x, c.load(i));
    c.store(0, x);
    EXPECT_TRUE(pairForms(c.code).empty());
}

// The bytes of src that the code reads.
std::set<int> bytesRead(const Code& code) {
    std::set<int> bytes;
    for (const Instruction& i : code.instructions) {
        if (!i.hasAddress || i.address.base != Base::Src) continue;
        for (const Address& a : {i.address, i.op == Opcode::LoadHalves ? i.high : i.address})
            for (int b = 0; b < accessSize(i.op, i.width); ++b) bytes.insert(a.offset + b);
    }
    return bytes;
}

// Which of the four lanes of binary32 are known to be zero, by register.
std::vector<unsigned> zeroLanes(const Code& code) {
    std::vector<unsigned> zero(static_cast<std::size_t>(code.registers), 0);
    const auto of = [&](Register r) { return zero[static_cast<std::size_t>(r)]; };
    for (const Instruction& i : code.instructions) {
        if (i.dst == kNoRegister) continue;
        unsigned& z = zero[static_cast<std::size_t>(i.dst)];
        const auto lane = [&](Register r, int l) { return of(r) >> l & 1U; };
        switch (i.op) {
            case Opcode::LoadSS:
                z = 0b1110;
                break;
            case Opcode::LoadHalf:
            case Opcode::NarrowPD:
            case Opcode::JoinSS:
            case Opcode::InsertSS:
                z = 0b1100;
                break;
            case Opcode::Zero:
                z = 0b1111;
                break;
            case Opcode::AddPS:
            case Opcode::SubPS:
                z = of(i.a) & of(i.b);
                break;
            case Opcode::MulPS:
                z = of(i.a);
                break;
            case Opcode::Shufps:
                for (int l = 0; l < 4; ++l)
                    z |= lane(l < 2 ? i.a : i.b, i.immediate >> 2 * l & 3) << l;
                break;
            case Opcode::BlendPS:
                for (int l = 0; l < 4; ++l) z |= lane(i.immediate >> l & 1 ? i.b : i.a, l) << l;
                break;
            default:
                break;
        }
    }
    return zero;
}

TEST(Pairs, IdleLanesHoldZeros) {
    const Kernel kernel = smallRealKernel({"s"}, Arithmetic::Single);
    const std::vector<Code> forms = pairForms(lower(kernel.flow, {}));
    ASSERT_FALSE(forms.empty());
    int checked = 0;
    for (const Instruction& i : forms.front().instructions) {
        if (i.op != Opcode::AddPS && i.op != Opcode::SubPS && i.op != Opcode::MulPS) continue;
        const std::vector<unsigned> zero = zeroLanes(forms.front());
        for (const Register r : {i.a, i.b}) {
            if (r == kNoRegister) continue;
            EXPECT_EQ(zero[static_cast<std::size_t>(r)] & 0b1100U, 0b1100U);
            ++checked;
        }
    }
    EXPECT_GT(checked, 0);
}

TEST(Pairs, ReadNothingElse) {
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
        const Kernel kernel = smallRealKernel({"s"}, arithmetic);
        const Code scalar = lower(kernel.flow, {});
        const std::vector<Code> forms = pairForms(scalar);
        ASSERT_FALSE(forms.empty());
        EXPECT_EQ(bytesRead(forms.front()), bytesRead(scalar));
    }
}

TEST(Pairs, AreTheSameEveryTime) {
    const Code scalar = lower(smallRealKernel({"s"}, Arithmetic::Double).flow, {});
    EXPECT_EQ(opcodes(pairForms(scalar).front()), opcodes(pairForms(scalar).front()));
}

// ---- four lanes

// The form on the widest vectors.
Code foursOf(const WrittenCode& c) {
    std::vector<Code> forms = pairForms(c.code);
    const auto isWide = [](const Instruction& i) { return i.width == 32; };
    for (Code& form : forms)
        if (std::ranges::any_of(form.instructions, isWide)) return std::move(form);
    ADD_FAILURE() << "nothing fills four lanes";
    return {};
}

TEST(Fours, NeighboursTakeOneInstructionEach) {
    WrittenCode c;
    std::vector<Register> x;
    for (int i = 0; i < 8; ++i) x.push_back(c.load(i));
    for (std::size_t i = 0; i < 4; ++i) c.store(static_cast<int>(i), c.sum(x[i], x[i + 4]));
    const Code code = foursOf(c);
    EXPECT_EQ(opcodes(code),
              (std::vector{Opcode::Load16, Opcode::Load16, Opcode::AddPD, Opcode::Store16}));
    EXPECT_EQ(bytesRead(code), bytesRead(c.code));
}

// A memory operand of four bytes is one number: there is no lane to choose.
TEST(Fours, ReadNoOtherLaneOutOfMemory) {
    const Kernel kernel = smallRealKernel({"s"}, Arithmetic::Single);
    for (const Code& form : pairForms(lower(kernel.flow, {})))
        for (const Instruction& i : form.instructions)
            EXPECT_TRUE(i.op != Opcode::JoinSS || i.immediate >> 6 == 0);
}

// ---- vectors

// y[i] = x[i] + x[i + n] for elements of 16 bytes.
Code sumsOfVectors(int n, int apart = 1) {
    Code c;
    std::vector<Register> x;
    const auto add = [&](Instruction i) {
        c.instructions.push_back(i);
        return i.dst;
    };
    for (int i = 0; i < 2 * n; ++i)
        x.push_back(add({.op = Opcode::Load16,
                         .dst = c.fresh(),
                         .hasAddress = true,
                         .address = {Base::Src, 16 * apart * i}}));
    for (int i = 0; i < n; ++i) {
        const Register y = add({.op = Opcode::AddPD,
                                .dst = c.fresh(),
                                .a = x[static_cast<std::size_t>(i)],
                                .b = x[static_cast<std::size_t>(i + n)]});
        add({.op = Opcode::Store16,
             .a = y,
             .hasAddress = true,
             .address = {Base::Dst, 16 * apart * i}});
    }
    return c;
}

TEST(PairsOfVectors, NeighboursTakeOneInstructionEach) {
    const std::vector<Code> forms = pairForms(sumsOfVectors(2));
    ASSERT_EQ(forms.size(), 1U);
    EXPECT_EQ(opcodes(forms[0]),
              (std::vector{Opcode::Load16, Opcode::Load16, Opcode::AddPD, Opcode::Store16}));
    for (const Instruction& i : forms[0].instructions) EXPECT_EQ(i.width, 32);
}

// Two operands to be joined and two stores: as many instructions as two sums have.
TEST(PairsOfVectors, AreLeftWhereTheySaveNothing) {
    EXPECT_TRUE(pairForms(sumsOfVectors(2, 2)).empty());
}

// y[i] = (x[i] + x[i + 40]) s, all of x read before y is written: more than the registers hold.
Kernel manySums() {
    constexpr int kSums = 40;
    Graph g(Arithmetic::DoublePair);
    std::vector<Value> x;
    for (int i = 0; i < 2 * kSums; ++i) x.push_back(Value(g, g.input(i)));
    std::vector<Value> y;
    for (std::size_t i = 0; i < kSums; ++i) y.push_back(scaled(x[i] + x[i + kSums]));
    for (int i = 0; i < kSums; ++i) g.output(i, y[static_cast<std::size_t>(i)].id());
    return {.name = {"Sums_40_64fc"},
            .length = kSums,
            .method = "test flow",
            .alignment = kernelgen::Alignment::Twin,
            .readsAllFirst = true,
            .flow = std::move(g)};
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(PairsOfVectors, LeaveNoUpperHalvesBehindAndAlignTheirSlots) {
    const std::string text = compileKernel(manySums(), kLevel3).assembly;
    EXPECT_TRUE(contains(text, "ymmword ptr [rdx"));
    EXPECT_TRUE(contains(text, "\tmov\trbp, rsp\n"));
    EXPECT_TRUE(contains(text, "\tand\trsp, -32\n"));
    EXPECT_TRUE(contains(text, "\tvzeroupper\n\txor\teax, eax\n\tleave\n"));
}

TEST(PairsOfVectors, AreOfOneTargetOnly) {
    for (const Target* target : {&kSse2, &kAvx2})
        EXPECT_FALSE(contains(compileKernel(manySums(), *target).assembly, "ymm")) << target->name;
}

}  // namespace
}  // namespace orvgen::test
