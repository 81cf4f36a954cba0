// SPDX-License-Identifier: MIT
// The instruction sets that kernels are written for.
//
// Allocation, order, the models of cores and the printer take what they need to know from here.
#pragma once

#include <cstdint>

namespace orvgen::kernelgen {

enum class Encoding : std::uint8_t {
    Legacy,  // two operands: the first one is overwritten
    Vex,     // three operands
    Evex,    // three operands, numbers of registers up to 31
};

struct Target {
    const char* name;
    Encoding encoding;
    int registers;    // vector registers
    int vectorBytes;  // of the widest vectors
    // Vectors may be memory operands wherever they stand; otherwise only at multiples of 16.
    bool unalignedOperands;
    // A scalar in memory may be the operand for all lanes.
    bool broadcasts;
    // What is alike in straight code may share instructions on wider vectors.
    bool pairs = false;
    // Behind the gate the body begins at a multiple of 32 bytes: the calls of the shortest kernels
    // take a tenth to a fifth longer where it begins with the last bytes of a line of 64.
    bool alignsBody = false;

    bool threeOperands() const { return encoding != Encoding::Legacy; }
};

// Every x86-64 processor.
inline constexpr Target kSse2{.name = "sse2",
                              .encoding = Encoding::Legacy,
                              .registers = 16,
                              .vectorBytes = 16,
                              .unalignedOperands = false,
                              .broadcasts = false};
// x86-64-v3, of which the AVX and AVX2 instructions are used.
inline constexpr Target kAvx2{.name = "avx2",
                              .encoding = Encoding::Vex,
                              .registers = 16,
                              .vectorBytes = 32,
                              .unalignedOperands = true,
                              .broadcasts = false};
// The product's second build, for processors of the same level.
inline constexpr Target kLevel3{.name = "x86-64-v3",
                                .encoding = Encoding::Vex,
                                .registers = 16,
                                .vectorBytes = 32,
                                .unalignedOperands = true,
                                .broadcasts = false,
                                .pairs = true,
                                .alignsBody = true};
// AVX512F alone: vectors of 64 bytes, and no EVEX encoding of shorter ones.
inline constexpr Target kAvx512{.name = "avx512",
                                .encoding = Encoding::Evex,
                                .registers = 32,
                                .vectorBytes = 64,
                                .unalignedOperands = true,
                                .broadcasts = true};
inline constexpr int kMostRegisters = 32;

}  // namespace orvgen::kernelgen
