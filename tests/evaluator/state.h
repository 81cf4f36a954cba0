// SPDX-License-Identifier: MIT
// What a processor holds, and one of its instructions as the evaluator executes it.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

namespace orvgen::test::evaluator {

// A vector of up to 64 bytes, as words; a binary64 number is two of them.
struct alignas(64) Vector {
    std::array<std::uint32_t, 16> words;
};

// What the processor says of itself, by its instructions cpuid and xgetbv.
struct Features {
    bool hasAvx = false, hasAvx2 = false, hasAvx512 = false;
    bool keepsWide = true;    // the operating system keeps vectors of 32 bytes for its threads,
    bool keepsWidest = true;  // and those of 64 bytes
    bool hasAvx512Dq = true;  // of a processor with the rest of AVX-512
};

// Registers are numbered as the encoding of instructions does.
enum General { rax, rcx, rdx, rbx, rsp, rbp, rsi, rdi };

struct State {
    std::array<std::uint64_t, 16> general;
    std::array<Vector, 32> vectors;
    std::array<std::uint64_t, 8> masks;
    bool zero, sign, carry, overflow, parity;
    std::uint64_t next;  // address of the next instruction
    Features features;
};

struct Operation;
using Handler = void (*)(State&, const Operation&);

constexpr std::uint8_t kNone = 0xff;
// In a table of words: none of the sources', but zero.
constexpr std::uint8_t kZeroWord = 32;
// In place of a register: the second byte of one of the first four, counted from here on.
constexpr std::uint8_t kHigh = 16;

// At most one operand stands in memory: base + index * scale + displacement.
struct Operation {
    Handler run = nullptr;
    std::uint64_t address = 0;
    std::int64_t immediate = 0;  // or where a jump leads to
    std::int64_t displacement = 0;
    std::uint8_t base = kNone, index = kNone, scale = 1;
    std::uint8_t memoryOperand = kNone;  // 0: the result, 1 and 2: the sources
    std::uint8_t memoryBytes = 0;
    bool repeats = false;  // what stands in memory fills the operand
    bool aligned = false;  // it has to lie on a boundary of its size
    // Registers; of general ones with two operands `to` is also the first source.
    std::uint8_t to = kNone, first = kNone, second = kNone;
    std::uint8_t width = 0;        // bytes of the result
    std::uint8_t secondBytes = 0;  // of the operand behind it
    std::uint8_t mask = 0;         // its register; 0: none
    bool zeroes = false;           // what the mask leaves out, instead of leaving it as it is
    bool keepsUpper = false;       // bytes of the register behind the result
    std::uint8_t operands = 0;     // without a mask and an immediate of vectors
    std::uint8_t generals = 0;     // a bit for each that is a general register
    std::uint8_t condition = 0;
    std::array<std::uint8_t, 16> pick{};  // for each word of the result its place in the sources

    bool isGeneral(int operand) const { return (generals >> operand & 1) != 0; }
};

// Ends an evaluation.
struct Stop {
    std::string why;
};

inline std::uint64_t addressOf(const State& s, const Operation& op) {
    std::uint64_t at = static_cast<std::uint64_t>(op.displacement);
    if (op.base != kNone) at += s.general[op.base];
    if (op.index != kNone) at += s.general[op.index] * op.scale;
    return at;
}
template <class T>
T* pointer(std::uint64_t address) {
    return reinterpret_cast<T*>(address);  // the memory is the program's own
}

// Copies as many bytes as an operand has, and touches no others.
inline void copyNumber(void* to, const void* from, int bytes) {
    switch (bytes) {
        case 8:
            std::memcpy(to, from, 8);
            break;
        case 4:
            std::memcpy(to, from, 4);
            break;
        case 2:
            std::memcpy(to, from, 2);
            break;
        default:
            std::memcpy(to, from, 1);
            break;
    }
}
inline void copyBytes(void* to, const void* from, int bytes) {
    switch (bytes) {
        case 64:
            std::memcpy(to, from, 64);
            break;
        case 32:
            std::memcpy(to, from, 32);
            break;
        case 16:
            std::memcpy(to, from, 16);
            break;
        default:
            copyNumber(to, from, bytes);
            break;
    }
}

}  // namespace orvgen::test::evaluator
