// SPDX-License-Identifier: MIT
// A kernel to be compiled: its names, its flow, and what the frame around the flow needs to know.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "graph.h"
#include "kernel_name.h"
#include "passes.h"

namespace orvgen::kernelgen {

// Which scaling flags select 1/N; the flag for 1/sqrt(N) is common to all.
enum class ScaleRule : std::uint8_t {
    ForwardByN,  // flag 1
    InverseByN,  // flag 2
    BothByN,     // flags 1 and 2
};

// How the kernel treats buffers that are not on a 16-byte boundary.
enum class Alignment : std::uint8_t {
    Any,        // no test, one body
    Twin,       // test, and a second function for the alignment-free body
    TwoBodies,  // test, and both bodies in one function
};

struct Kernel {
    KernelName name;
    int length = 0;      // N, which the scale is made of
    std::string method;  // one line: how this length is computed ("4 T 4")
    ScaleRule scale = ScaleRule::ForwardByN;
    Alignment alignment = Alignment::Any;
    bool halvesOnly = false;  // src and dst are touched by 8-byte halves only
    // All of src is read before dst is written, so that any overlap is harmless; otherwise only src
    // equal to dst is.
    bool readsAllFirst = false;
    Graph flow;
    bool registersOnly = false;  // nothing is stored to the stack
    // Instead of the flow, where a kernel runs over memory in passes. It has a buffer among its
    // arguments; the flow only names the arithmetic.
    std::optional<Passes> passes = {};
};

}  // namespace orvgen::kernelgen
