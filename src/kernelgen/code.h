// SPDX-License-Identifier: MIT
// Machine code of one basic block: before registers are assigned, instructions on virtual
// registers, each written once; and after.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "graph.h"
#include "opcode.h"

namespace orvgen::kernelgen {

// What an address is relative to. The printer binds each to a register.
enum class Base : std::uint8_t {
    Src,
    Dst,
    Pool,
    Scale,         // in the type of the kernel's elements
    WidenedScale,  // a binary32 scale as binary64
    Frame,
    Buffer,
    Tile,
    Count
};

struct Address {
    Base base = Base::Src;
    int offset = 0;  // bytes
    bool operator==(const Address&) const = default;
};

using Register = int;
inline constexpr Register kNoRegister = -1;

struct Instruction {
    Opcode op;
    Register dst = kNoRegister;
    Register a = kNoRegister;  // tied to dst in two-operand instructions
    Register b = kNoRegister;
    bool hasAddress = false;  // second operand (or the target of a store) in memory
    Address address = {};
    Address high = {};  // LoadHalves only
    int immediate = 0;
    int stage = 0;
    int width = 16;          // of its vectors, in bytes
    bool broadcast = false;  // the memory operand is a scalar for all lanes
};

// A constant of the pool: as stored, with its meaning.
struct PoolEntry {
    Type type = Type::F32;
    std::vector<double> lanes;  // stored values
    std::string text;

    int bytes() const { return static_cast<int>(lanes.size()) * (isSingle(type) ? 4 : 8); }
};

// The forms in which a code wants the scale: in all lanes of so many copies of a type, and a
// binary32 scale also as binary64 behind it, so many times as it takes the bytes of the type.
struct ScaleForm {
    Type type = Type::F32;
    bool widened = false;
    int copies = 1;
    int widenedCopies = 1;

    int widenedAt() const { return std::max(8, bytesOf(type)); }
    int stride() const {
        return widened ? (1 + widenedCopies) * widenedAt() : copies * bytesOf(type);
    }
};

struct Code {
    std::vector<Instruction> instructions;
    int registers = 0;
    std::vector<PoolEntry> pool;  // Address{Pool, index}: entry index until the pool is laid out
    std::vector<std::string> stages;
    ScaleForm scale = {};

    Register fresh() { return registers++; }
};

// One instruction on the vector registers of a target.
struct MachineInstruction {
    Opcode op;
    int dst = -1;
    int first = -1;  // first of two operands; of a conversion: what the rest of dst is taken from
    int src = -1;    // second or only operand, or the value of a store
    bool hasAddress = false;
    Address address = {};  // Address{Frame, slot number} until the frame is laid out
    Address high = {};
    int immediate = 0;
    int stage = 0;
    int width = 16;
    bool broadcast = false;
    bool clearsFirst = false;  // dst is cleared before a conversion into it (false dependency)
};

}  // namespace orvgen::kernelgen
