// SPDX-License-Identifier: MIT
// What the kernels for batches have in common as text: head, frame, loop, pool.
#pragma once

#include <string>

#include "block.h"
#include "compile.h"
#include "layout.h"

namespace orvgen::kernelgen {

// An instruction or directive as a line.
std::string line(const std::string& text);

// The comment above a kernel of so many transforms.
std::string wideHead(const std::string& name, const Kernel& kernel, const KernelFigures& figures,
                     int transforms);

// From the function's label on; rbp is the caller's frame.
std::string openFunction(const std::string& name);
// Room below the stack pointer for a block's spills, at a multiple of the vector's size.
std::string openFrame(int bytes, const Target& target);
std::string closeFunction(const std::string& name);

// The code between is run until the count, a register or in memory, has come down to zero.
std::string openLoop();
std::string closeLoop(const std::string& count);

// The three scales and the constants of a block, as its target reads them: numbers for all lanes
// alone where it broadcasts, else vectors of them.
class WidePool {
  public:
    // Lays the pool out: the block's addresses are changed.
    WidePool(Block& block, const Target& target);

    int scaleStride() const { return scaleStride_; }
    int widenedAt() const { return widenedAt_; }
    // What the pool's register points behind its begin, so that displacements are short.
    int bias() const;
    std::string print(const std::string& name, int length) const;

  private:
    std::string scale(ScaleKind kind, int length, const char* what) const;

    const Block& block_;
    const Target& target_;
    int scaleStride_, widenedAt_;
    PoolLayout layout_;
};

}  // namespace orvgen::kernelgen
