// SPDX-License-Identifier: MIT
// The text of a kernel's functions: gate, frame, blocks and the loops around them.
#pragma once

#include <string>
#include <vector>

#include "block.h"
#include "emit.h"
#include "kernel.h"

namespace orvgen::kernelgen {

// The scales that a flag may select.
enum class ScaleKind : std::uint8_t { None, BySqrtN, ByN };

// A pass and its code.
struct Step {
    Pass pass;
    Block block;
};

// A kernel whose code is complete: addresses are bytes, and constants have their places.
struct CompiledBody {
    std::vector<Step> tile;
    Step last;
    int tiles = 1;
    int tileBytes = 0;
    int bufferBytes = 0;
    int scratchAt = 0;
    int scaleStride = 0;  // bytes from one scale to the next, in the order of ScaleKind
    int poolBytes = 0;    // of the scales and the constants together

    // Whether there are passes to and from a buffer; otherwise the body is one straight block.
    bool hasLoops() const { return !tile.empty(); }
    // Of the spill slots; of the scale that passes park; of the whole frame, without what only
    // aligns it.
    int spillBytes() const;
    int parkedBytes() const;
    int frameBytes() const;
    // Whether there are vectors of 32 bytes: anywhere, and in the frame.
    bool isWide() const;
    bool hasWideFrame() const;
};

// The label of the pool that a function reads.
std::string poolLabel(const std::string& function);

// All functions of the kernel, one or two.
std::string printFunctions(const Kernel& kernel, const CompiledBody& body, const Target& target);

}  // namespace orvgen::kernelgen
