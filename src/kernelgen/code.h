// Machine code of one basic block before registers are assigned: SSE instructions on virtual
// registers, each written once.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "graph.h"

namespace orvgen::kernelgen {

// What an address is relative to. The emitter binds each to a register.
enum class Base : std::uint8_t { Src, Dst, Pool, Scale, Frame, Buffer, Tile, Count };

struct Address {
    Base base = Base::Src;
    int offset = 0;  // bytes
    bool operator==(const Address&) const = default;
};

using Register = int;
inline constexpr Register kNoRegister = -1;

enum class Opcode : std::uint8_t {
    // Values that come from outside. They emit nothing where they stand: the allocator loads them
    // when they are needed, or reads them as memory operands.
    LoadSS,       // 4 bytes
    LoadSD,       // 8 bytes of binary64
    LoadHalf,     // 8 bytes into the low half, zeros above
    LoadHalves,   // 8 bytes at `address` into the low half, 8 bytes at `high` into the high half
    Load16,       // 16 bytes at a multiple of 16 from an aligned buffer; the twin's unaligned move
    Load16Split,  // 16 bytes; the twin moves two 8-byte halves
    LoadAligned,  // 16 bytes, aligned in every body (pool, buffer, frame)
    SpreadSS,     // a binary32 scalar to four lanes, by two self-unpacks
    SpreadSD,     // a binary64 scalar to two lanes, by a double-broadcast move
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
    Widen,   // cvtss2sd
    Narrow,  // cvtsd2ss
    Shufps,
    Unpcklps,
    Unpckhps,
    Movlhps,
    Movhlps,
    Shufpd,
    Unpcklpd,
    Unpckhpd,

    StoreSS,
    StoreSD,
    StoreLow,      // low 8 bytes
    StoreHigh,     // high 8 bytes
    Store16,       // as Load16
    Store16At8,    // unaligned in both bodies
    Store16Split,  // as Load16Split
    StoreAligned,
    StoreZero4,
    StoreZero8,  // +0.0 without a register

    Move,  // between registers; only the allocator makes it
};

struct Instruction {
    Opcode op;
    Register dst = kNoRegister;
    Register a = kNoRegister;  // tied to dst in two-operand instructions
    Register b = kNoRegister;
    bool hasAddress = false;  // second operand (or the target of a store) in memory
    Address address;
    Address high;  // LoadHalves only
    int immediate = 0;
    int stage = 0;
};

// A constant of the pool: as stored, with its meaning.
struct PoolEntry {
    Type type = Type::F32;
    std::vector<double> lanes;  // stored values
    std::string text;
};

struct Code {
    std::vector<Instruction> instructions;
    int registers = 0;
    std::vector<PoolEntry> pool;  // Address{Pool, index}: entry index until the pool is laid out
    std::vector<std::string> stages;

    Register fresh() { return registers++; }
};

// One instruction on the sixteen vector registers.
struct MachineInstruction {
    Opcode op;
    int dst = -1;
    int src = -1;  // second operand, or the value of a store
    bool hasAddress = false;
    Address address;  // Address{Frame, slot number} until the frame is laid out
    Address high;
    int immediate = 0;
    int stage = 0;
    bool clearsFirst = false;  // dst is cleared before a conversion into it (false dependency)
};

bool isLoad(Opcode op);
bool isStore(Opcode op);
bool isCommutative(Opcode op);
// Size of the value that the instruction makes: 4, 8 or 16 bytes.
int resultSize(Opcode op);
// Bytes that the instruction reads from or writes to memory.
int accessSize(Opcode op);

}  // namespace orvgen::kernelgen
