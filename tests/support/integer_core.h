// SPDX-License-Identifier: MIT
// Runs the integer side of a kernel: gate, frame, addresses, loops, calls of the allocator. Vector
// registers hold no values here; no address and no branch of a kernel depends on them. What comes
// out is the trace: every instruction that ran, with every memory operand resolved to a place in
// src, dst, buffer, the frame or the library's own constants.
//
// Pointers are plain numbers with a range of their own for each buffer, so that whatever a kernel
// does to its pointers (bias, alignment masks, running offsets) is simply computed. A value that is
// not known (a register at entry, data) is marked so; a branch or an address made of it is
// reported.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/machine_code.h"

namespace orvgen::test {

enum class Region { src, dst, buffer, frame, constants, unknown };
const char* regionName(Region region);

struct Access {
    Region region = Region::unknown;
    // From the start of the buffer; in the frame from the stack pointer at entry, so negative; in
    // the constants the address within the library.
    std::int64_t offset = 0;
    int size = 0;
    bool load = false;
    bool store = false;
    bool vector = false;
};

struct Step {
    const Instruction* instruction = nullptr;
    std::optional<Access> access;  // not for the stack traffic of push, pop, call and ret
};

struct CallSetup {
    int srcMisalignment = 0;  // bytes off a 16-byte boundary
    int dstMisalignment = 0;
    bool srcNull = false;
    bool dstNull = false;
    bool bufferNull = false;
    std::int32_t flag = 8;
    std::optional<std::int32_t>
        length;  // a dispatcher's third argument; the flag is then the fourth
    bool inPlace = false;
};

struct ExternalCall {
    std::string name;
    std::int64_t argument;  // the block, or the number of bytes
    std::size_t step;       // in the trace
};

struct Trace {
    std::vector<Step> steps;
    std::vector<std::string> entered;  // functions, the first one included, in order of entry
    std::vector<ExternalCall> calls;
    std::int32_t status = 0;
    std::int64_t frameBytes = 0;  // deepest stack pointer or access below the one at entry
    // What no kernel may do: read a frame slot or a vector register that nothing has written, let
    // unknown data into an address or branch, spoil a register of the caller, end with another
    // stack pointer, call with a misaligned stack, hold a foreign instruction.
    std::vector<std::string> complaints;
};

Trace runIntegers(const MachineCode& code, const std::string& function, const CallSetup& setup);

}  // namespace orvgen::test
