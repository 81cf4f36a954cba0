// SPDX-License-Identifier: MIT
// The instructions that kernels are made of, and everything that the steps of the compiler need to
// know of one: a row in a table.
#pragma once

#include <cstdint>

namespace orvgen::kernelgen {

enum class Opcode : std::uint8_t {
    // Values that come from outside. They emit nothing where they stand: the allocator loads them
    // when they are needed, or reads them as memory operands.
    LoadSS,       // 4 bytes
    LoadSD,       // 8 bytes of binary64
    LoadHalf,     // 8 bytes into the low half, zeros above
    LoadHalves,   // 8 bytes at `address` into the low half, 8 bytes at `high` into the high half
    Load16,       // a vector, aligned in an aligned buffer; the twin's unaligned move
    Load16Split,  // a vector; the twin moves two 8-byte halves
    LoadAligned,  // a vector, aligned in every body (pool, buffer, frame)
    LoadRows,     // 16 bytes of as many rows as make a vector
    SpreadSS,     // a binary32 scalar to all lanes
    SpreadSD,     // a binary64 scalar to all lanes
    LoadTwice,    // half a vector to both halves
    Zero,

    AddSS,
    SubSS,
    MulSS,
    AddSD,
    SubSD,
    MulSD,
    AddPS,
    SubPS,
    MulPS,
    AddPD,
    SubPD,
    MulPD,
    XorPS,
    XorPD,
    Widen,         // one binary32 to binary64
    Narrow,        // one binary64 to binary32
    WidenPS,       // the lower half of a vector of binary32 to a whole one of binary64
    WidenUpperPS,  // the upper half
    NarrowPD,      // a vector of binary64 to half a one of binary32
    UpperHalf,     // of a vector
    UpperPair,     // the upper two numbers of binary32 of 16 bytes, zeros above
    JoinHalves,    // two halves to a vector
    HalvesOfTwo,   // two of the four halves of two vectors
    Shufps,
    Unpcklps,
    Unpckhps,
    Movlhps,
    Movhlps,
    Shufpd,
    Unpcklpd,
    Unpckhpd,
    JoinSD,    // two binary64 scalars to a vector of 16 bytes
    JoinSS,    // two binary32 scalars to the lower half of one, zeros above
    InsertSS,  // the lanes of one, one of them of another, some of them zero
    BlendPS,   // each lane of one or of the other
    BlendPD,
    PermutePS,  // the lanes of the second one that the first one says

    StoreSS,
    StoreSD,
    StoreLow,      // low 8 bytes
    StoreHigh,     // high 8 bytes
    Store16,       // as Load16
    Store16At8,    // unaligned in both bodies
    Store16Split,  // as Load16Split
    StoreAligned,
    StoreUpper,  // the upper half of a vector
    StoreRows,   // as LoadRows
    StoreZero4,
    StoreZero8,  // +0.0 without a register

    Move,  // between registers; only the allocator makes it
    Count
};

// Which operands an instruction has.
enum class Form : std::uint8_t {
    Load,    // dst from memory, or from nothing
    Unary,   // dst from one value, which may stand in memory
    Binary,  // dst from two values, the second of which may stand in memory
    Store,   // a value, or nothing, to memory
    Move,
};

// The part of the vector unit that an instruction keeps busy.
enum class Unit : std::uint8_t {
    None,
    Add,
    Mul,
    Shuffle,
    Interleave,
    Logic,
    Convert,
    Cross,  // moves data between the 16-byte parts of a vector
    Count
};

// How many bytes; vectors are as wide as the instruction says.
enum class Extent : std::uint8_t { None, Four, Eight, Sixteen, Whole, Half };

struct OpcodeRow {
    Opcode op;
    Form form;
    const char* mnemonic = nullptr;   // in the two-operand encoding; the others put a v in front
    const char* unaligned = nullptr;  // in the body for any alignment, if it is another
    const char* evex = nullptr;       // in the EVEX encoding, if it is another
    Extent result = Extent::None;     // the value that is made
    Extent access = Extent::None;     // what a memory operand reads or writes
    int lane = 0;                     // bytes of a lane, where a scalar may be read for all lanes
    Unit unit = Unit::None;
    int operations = 0;      // on that unit
    bool commutes = false;   // the operands may change places
    bool selects = false;    // has an immediate that selects lanes
    bool fromMemory = true;  // the second operand may stand in memory
};

const OpcodeRow& rowOf(Opcode op);

inline bool isLoad(Opcode op) { return rowOf(op).form == Form::Load; }
inline bool isStore(Opcode op) { return rowOf(op).form == Form::Store; }

// In vectors of `width` bytes: the size of the value that the instruction makes, and of what it
// reads from memory or writes there.
int resultSize(Opcode op, int width = 16);
int accessSize(Opcode op, int width = 16);

}  // namespace orvgen::kernelgen
