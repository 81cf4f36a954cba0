// SPDX-License-Identifier: MIT
// Pairs of scalar operations on small blocks whose best form is known, and what holds for all.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "kernelgen/lower.h"
#include "kernelgen/pair.h"
#include "small_flows.h"
#include "written_code.h"

namespace orvgen::kernelgen {
namespace {

using test::WrittenCode;

std::vector<Opcode> opcodes(const Code& code) {
    std::vector<Opcode> all;
    for (const Instruction& i : code.instructions) all.push_back(i.op);
    return all;
}

// The only form; fails if there is none.
Code pairsOf(const WrittenCode& c) {
    const std::vector<Code> forms = pairScalars(c.code);
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
    EXPECT_TRUE(pairScalars(c.code).empty());
}

TEST(Pairs, NothingIsPairedWithWhatItWaitsFor) {
    WrittenCode c;
    Register x = c.load(0);
    for (int i = 1; i < 6; ++i) x = c.sum(x, c.load(i));
    c.store(0, x);
    EXPECT_TRUE(pairScalars(c.code).empty());
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
    const Kernel kernel = test::smallRealKernel("s", Arithmetic::Single);
    const std::vector<Code> forms = pairScalars(lower(kernel.flow, {}));
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
        const Kernel kernel = test::smallRealKernel("s", arithmetic);
        const Code scalar = lower(kernel.flow, {});
        const std::vector<Code> forms = pairScalars(scalar);
        ASSERT_FALSE(forms.empty());
        EXPECT_EQ(bytesRead(forms.front()), bytesRead(scalar));
    }
}

TEST(Pairs, SameCodeEveryTime) {
    const Code scalar = lower(test::smallRealKernel("s", Arithmetic::Double).flow, {});
    EXPECT_EQ(opcodes(pairScalars(scalar).front()), opcodes(pairScalars(scalar).front()));
}

}  // namespace
}  // namespace orvgen::kernelgen
