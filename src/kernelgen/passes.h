// SPDX-License-Identifier: MIT
// What a kernel does between its gate and its return, as passes over memory.
//
// A pass is a block of straight code, run once or in a counted loop. Most kernels are one block
// that reads src and writes dst. Kernels with a buffer do the passes of `tile` for one tile of src
// after the other, into the buffer, and then `last` from the buffer to dst.
#pragma once

#include <string>
#include <vector>

#include "allocate.h"

namespace orvgen::kernelgen {

struct Pass {
    // The same operations, written down in one order or another; the compiler keeps the fastest.
    std::vector<Code> forms;
    AllocationOptions allocation;
    int frameLimit = -1;  // of its spill slots, in bytes; negative: any
    Base from = Base::Src;
    Base to = Base::Dst;
    int trips = 1;
    int advance = 0;   // bytes that both pointers move on by after each trip
    std::string name;  // of the loop
    std::string what;  // in words
};

struct Passes {
    int tiles = 1;
    std::vector<Pass> tile;
    int tileBytes = 0;  // that the passes of one tile advance in src and in the buffer
    Pass last;
    int bufferBytes = 0;
    int scratchAt = 0;  // offset in the buffer of what Base::Tile stands for
};

}  // namespace orvgen::kernelgen
