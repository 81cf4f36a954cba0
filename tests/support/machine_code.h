// SPDX-License-Identifier: MIT
// The functions of a built library, decoded (by Capstone) and classified: which instructions are
// arithmetic, shuffles, moves, conversions, control flow, and which ones no kernel may hold.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/elf_image.h"

namespace orvgen::test {

enum class Kind {
    move,      // between registers, or between a register and memory
    shuffle,   // of lanes, within or between vectors; also the shifts of whole vectors by bytes
    logic,     // bit operations on vectors
    add,       // additions and subtractions
    multiply,  //
    convert,   // between binary32 and binary64
    integer,   // on general registers
    jump,      // conditional or not
    call,
    ret,
    nop,
    foreign,  // anything else: no kernel may hold it
};

enum class Lanes { none, scalar32, scalar64, packed32, packed64, whole };

// Registers are numbered as the instruction encoding does: rax, rcx, rdx, rbx, rsp, rbp, rsi, rdi,
// r8 to r15; xmm0 to xmm15, of which ymm0 to ymm15 are the whole.
struct Operand {
    enum class Type { none, general, vector, immediate, memory };
    Type type = Type::none;
    int size = 0;            // bytes
    int number = -1;         // register
    bool high = false;       // ah, bh, ch, dh
    std::int64_t value = 0;  // immediate
    // Memory: base + index * scale + displacement; -1 where there is none, 16 for rip.
    int base = -1;
    int index = -1;
    int scale = 1;
    std::int64_t displacement = 0;
};

struct Instruction {
    std::uint64_t address = 0;
    int length = 0;
    std::string text;  // mnemonic and operands, for messages
    std::string mnemonic;
    Kind kind = Kind::foreign;
    Lanes lanes = Lanes::none;
    bool sse3 = false;         // the one later instruction that some kernels may hold: movddup
    bool aligned = false;      // its memory operand must lie on a 16-byte boundary
    bool mergesFirst = false;  // lanes of the destination register survive
    bool clears = false;       // a register combined with itself: its old value does not matter
    bool vex = false;          // of three operands; the mnemonic stands without its v
    int width = 16;            // bytes of the vectors that it works on
    std::array<Operand, 4> operands;
    int operandCount = 0;

    const Operand* memory() const;
    bool loads() const;   // reads its memory operand
    bool stores() const;  // writes its memory operand
    bool vector() const { return lanes != Lanes::none; }
    bool flow() const { return kind == Kind::jump || kind == Kind::call || kind == Kind::ret; }
};

struct Function {
    Symbol symbol;
    std::vector<Instruction> instructions;

    const Instruction* at(std::uint64_t address) const;
    // What stands in the symbol but does nothing: padding behind the last instruction is not in it.
    std::string label(const Instruction& instruction) const;
};

class MachineCode {
  public:
    explicit MachineCode(const std::string& libraryPath);
    ~MachineCode();
    MachineCode(const MachineCode&) = delete;
    MachineCode& operator=(const MachineCode&) = delete;

    const ElfImage& image() const { return elf; }
    bool has(const std::string& name) const;
    // Decoded at first use. Throws when there is no such function or its bytes are no code.
    const Function& function(const std::string& name) const;
    const Function* functionAt(std::uint64_t address) const;
    // Code without a symbol (the linkage table of imported functions), one instruction at a time.
    Instruction decodeAt(std::uint64_t address) const;

  private:
    ElfImage elf;
    std::uint64_t decoder = 0;
    mutable std::map<std::string, std::unique_ptr<Function>> decoded;
};

}  // namespace orvgen::test
