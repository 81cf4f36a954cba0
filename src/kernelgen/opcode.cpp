// SPDX-License-Identifier: MIT
#include "opcode.h"

#include <array>
#include <cstddef>

namespace orvgen::kernelgen {

namespace {

using enum Extent;
using enum Form;

constexpr OpcodeRow load(Opcode op, const char* mnemonic, Extent result, Extent access) {
    return {.op = op, .form = Load, .mnemonic = mnemonic, .result = result, .access = access};
}

constexpr OpcodeRow store(Opcode op, const char* mnemonic, Extent access) {
    return {.op = op, .form = Store, .mnemonic = mnemonic, .access = access};
}

// The other mnemonic of the body for any alignment.
constexpr OpcodeRow unaligned(OpcodeRow row, const char* mnemonic) {
    row.unaligned = mnemonic;
    return row;
}

constexpr OpcodeRow arithmetic(Opcode op, const char* mnemonic, Unit unit, Extent size, int lane) {
    return {.op = op,
            .form = Binary,
            .mnemonic = mnemonic,
            .result = size,
            .access = size,
            .lane = lane,
            .unit = unit,
            .operations = 1,
            .commutes = true};
}

constexpr OpcodeRow sum(Opcode op, const char* mnemonic, Extent size, int lane) {
    return arithmetic(op, mnemonic, Unit::Add, size, lane);
}

constexpr OpcodeRow difference(Opcode op, const char* mnemonic, Extent size, int lane) {
    OpcodeRow row = sum(op, mnemonic, size, lane);
    row.commutes = false;
    return row;
}

constexpr OpcodeRow product(Opcode op, const char* mnemonic, Extent size, int lane) {
    return arithmetic(op, mnemonic, Unit::Mul, size, lane);
}

constexpr OpcodeRow signs(Opcode op, const char* mnemonic, const char* evex, int lane) {
    OpcodeRow row = arithmetic(op, mnemonic, Unit::Logic, Whole, lane);
    row.evex = evex;
    return row;
}

constexpr OpcodeRow conversion(Opcode op, const char* mnemonic, Extent result, Extent access) {
    return {.op = op,
            .form = Unary,
            .mnemonic = mnemonic,
            .result = result,
            .access = access,
            .unit = Unit::Convert,
            .operations = 1};
}

constexpr OpcodeRow shuffle(Opcode op, const char* mnemonic, Unit unit, bool selects,
                            bool fromMemory = true) {
    return {.op = op,
            .form = Binary,
            .mnemonic = mnemonic,
            .result = Whole,
            .access = Whole,
            .unit = unit,
            .operations = 1,
            .selects = selects,
            .fromMemory = fromMemory};
}

// The same with another size in memory.
constexpr OpcodeRow reading(Extent access, OpcodeRow row) {
    row.access = access;
    return row;
}

// Movements bear the names with the shortest encodings, whatever the type: movaps, movups, xorps.
// Those without a mnemonic take more than one instruction, or another one in another encoding; the
// printer knows them.
constexpr std::array<OpcodeRow, static_cast<std::size_t>(Opcode::Count)> kRows = {
    load(Opcode::LoadSS, "movss", Four, Four),
    load(Opcode::LoadSD, "movsd", Eight, Eight),
    load(Opcode::LoadHalf, "movsd", Whole, Eight),
    OpcodeRow{.op = Opcode::LoadHalves,
              .form = Load,
              .result = Whole,
              .access = Eight,
              .unit = Unit::Interleave,
              .operations = 1},
    unaligned(load(Opcode::Load16, "movaps", Whole, Whole), "movups"),
    load(Opcode::Load16Split, nullptr, Whole, Whole),
    load(Opcode::LoadAligned, "movaps", Whole, Whole),
    load(Opcode::LoadRows, nullptr, Whole, Sixteen),
    OpcodeRow{.op = Opcode::SpreadSS,
              .form = Load,
              .result = Whole,
              .access = Four,
              .unit = Unit::Interleave,
              .operations = 2},
    load(Opcode::SpreadSD, nullptr, Whole, Eight),
    load(Opcode::LoadTwice, "broadcastf128", Whole, Half),
    load(Opcode::Zero, nullptr, Whole, None),

    sum(Opcode::AddSS, "addss", Four, 4),
    difference(Opcode::SubSS, "subss", Four, 4),
    product(Opcode::MulSS, "mulss", Four, 4),
    sum(Opcode::AddSD, "addsd", Eight, 8),
    difference(Opcode::SubSD, "subsd", Eight, 8),
    product(Opcode::MulSD, "mulsd", Eight, 8),
    sum(Opcode::AddPS, "addps", Whole, 4),
    difference(Opcode::SubPS, "subps", Whole, 4),
    product(Opcode::MulPS, "mulps", Whole, 4),
    sum(Opcode::AddPD, "addpd", Whole, 8),
    difference(Opcode::SubPD, "subpd", Whole, 8),
    product(Opcode::MulPD, "mulpd", Whole, 8),
    signs(Opcode::XorPS, "xorps", "vpxord", 4),
    signs(Opcode::XorPD, "xorpd", "vpxorq", 8),
    conversion(Opcode::Widen, "cvtss2sd", Eight, Four),
    conversion(Opcode::Narrow, "cvtsd2ss", Four, Eight),
    conversion(Opcode::WidenPS, "cvtps2pd", Whole, Half),
    conversion(Opcode::WidenUpperPS, "cvtps2pd", Whole, Half),
    conversion(Opcode::NarrowPD, "cvtpd2ps", Half, Whole),
    OpcodeRow{.op = Opcode::UpperHalf,
              .form = Unary,
              .mnemonic = "extractf128",
              .result = Half,
              .access = Whole,
              .unit = Unit::Cross,
              .operations = 1,
              .fromMemory = false},
    OpcodeRow{.op = Opcode::UpperPair,
              .form = Unary,
              .mnemonic = "psrldq",
              .result = Half,
              .access = Whole,
              .unit = Unit::Interleave,
              .operations = 1,
              .fromMemory = false},
    OpcodeRow{.op = Opcode::JoinHalves,
              .form = Binary,
              .mnemonic = "insertf128",
              .evex = "vinsertf64x4",
              .result = Whole,
              .access = Half,
              .unit = Unit::Cross,
              .operations = 1,
              .selects = true},
    shuffle(Opcode::HalvesOfTwo, "perm2f128", Unit::Cross, true),
    shuffle(Opcode::Shufps, "shufps", Unit::Shuffle, true),
    shuffle(Opcode::Unpcklps, "unpcklps", Unit::Interleave, false),
    shuffle(Opcode::Unpckhps, "unpckhps", Unit::Interleave, false),
    shuffle(Opcode::Movlhps, "movlhps", Unit::Interleave, false, false),
    shuffle(Opcode::Movhlps, "movhlps", Unit::Interleave, false, false),
    shuffle(Opcode::Shufpd, "shufpd", Unit::Shuffle, true),
    shuffle(Opcode::Unpcklpd, "unpcklpd", Unit::Interleave, false),
    shuffle(Opcode::Unpckhpd, "unpckhpd", Unit::Interleave, false),
    reading(Eight, shuffle(Opcode::JoinSD, "unpcklpd", Unit::Interleave, false)),
    reading(Four, shuffle(Opcode::JoinSS, "insertps", Unit::Interleave, true)),
    shuffle(Opcode::InsertSS, "insertps", Unit::Interleave, true, false),
    shuffle(Opcode::BlendPS, "blendps", Unit::Logic, true),
    shuffle(Opcode::BlendPD, "blendpd", Unit::Logic, true),
    shuffle(Opcode::PermutePS, "permps", Unit::Cross, false),

    store(Opcode::StoreSS, "movss", Four),
    store(Opcode::StoreSD, "movsd", Eight),
    store(Opcode::StoreLow, "movlps", Eight),
    store(Opcode::StoreHigh, "movhps", Eight),
    unaligned(store(Opcode::Store16, "movaps", Whole), "movups"),
    store(Opcode::Store16At8, "movups", Whole),
    store(Opcode::Store16Split, nullptr, Whole),
    store(Opcode::StoreAligned, "movaps", Whole),
    store(Opcode::StoreUpper, "extractf128", Half),
    store(Opcode::StoreRows, nullptr, Sixteen),
    store(Opcode::StoreZero4, nullptr, Four),
    store(Opcode::StoreZero8, nullptr, Eight),

    OpcodeRow{.op = Opcode::Move, .form = Move, .mnemonic = "movaps", .result = Whole},
};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < kRows.size(); ++i)
        if (kRows[i].op != static_cast<Opcode>(i)) return false;
    return true;
}
static_assert(isInOrder(), "the rows stand in the order of the enumeration");

int bytes(Extent extent, int width) {
    switch (extent) {
        case None:
            return 0;
        case Four:
            return 4;
        case Eight:
            return 8;
        case Sixteen:
            return 16;
        case Whole:
            return width;
        case Half:
            return width / 2;
    }
    return 0;
}

}  // namespace

const OpcodeRow& rowOf(Opcode op) { return kRows[static_cast<std::size_t>(op)]; }

int resultSize(Opcode op, int width) { return bytes(rowOf(op).result, width); }
int accessSize(Opcode op, int width) { return bytes(rowOf(op).access, width); }

}  // namespace orvgen::kernelgen
