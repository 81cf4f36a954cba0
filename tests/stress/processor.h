// SPDX-License-Identifier: MIT
// Calls with the processor in a state of the test's choosing, as a hostile but lawful caller leaves
// it: control word with any masks and sticky flags, every vector register and the memory below the
// stack pointer full of one pattern (signalling NaNs, say), garbage in the upper halves of 32-bit
// arguments. Afterwards the state is read back.
#pragma once

#include <cstdint>
#include <string>

#include "kernels/kernel_list.h"

namespace orvgen::test {

// Bits of the control and status word.
namespace mxcsr {
constexpr std::uint32_t flags = 0x3f;  // sticky: invalid, denormal, zero divide, overflow, ...
constexpr std::uint32_t inexact = 0x20;
constexpr std::uint32_t denormalsAreZero = 0x40;
constexpr std::uint32_t masks = 0x1f80;
constexpr std::uint32_t inexactMask = 0x1000;
constexpr std::uint32_t rounding[] = {0x0000, 0x2000, 0x4000, 0x6000};
constexpr std::uint32_t flushToZero = 0x8000;
}  // namespace mxcsr

// What the registers hold before a call, 16 bytes each.
struct Pattern {
    const char* name;
    std::uint64_t low, high;
};
// All lanes: signalling NaN of either type, denormal numbers of both, all bits.
constexpr Pattern patterns[] = {
    {"signalling NaNs in binary32", 0x7fa000017fa00001, 0xffa00001ffa00001},
    {"signalling NaNs in binary64", 0x7ff4000000000001, 0xfff4000000000001},
    {"denormals", 0x0000000100000001, 0x8000000180000001},
    {"ones", 0xffffffffffffffff, 0xffffffffffffffff},
};

struct Outcome {
    std::int32_t status = 0;
    std::uint32_t control = 0;  // the word after the call
    // What the calling convention forbids, or a trap; empty when all is well.
    std::string fault;
};

// Six integer arguments, as the registers get them.
struct Arguments {
    std::uint64_t value[6] = {};

    void pointer(int i, const void* p) { value[i] = reinterpret_cast<std::uintptr_t>(p); }
    // A 32-bit integer; the upper half of its register is nobody's business.
    void integer(int i, std::int32_t v) {
        value[i] = 0xdeadbeef00000000 | static_cast<std::uint32_t>(v);
    }
};

Outcome callWith(PlainFunction function, const Arguments& arguments, std::uint32_t control,
                 const Pattern& pattern);
// The same, in which a trap ends the call and not the process. For one thread at a time.
Outcome callCatching(PlainFunction function, const Arguments& arguments, std::uint32_t control,
                     const Pattern& pattern);

// Whether the control bits are those before the call and no sticky flag is gone; else a complaint.
std::string checkControl(std::uint32_t before, std::uint32_t after);

}  // namespace orvgen::test
