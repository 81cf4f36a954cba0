// SPDX-License-Identifier: MIT
// Register allocation of one basic block in a given order.
//
// Furthest next use is evicted first (Belady 1966). A value that stands in memory already (a src
// element, a constant, a value spilled before) is preferred: dropping it costs no store. A value is
// stored at most once. Loads emit nothing where they stand: the value is loaded, or read as a
// memory operand, where it is used.
#pragma once

#include "code.h"
#include "target.h"

namespace orvgen::kernelgen {

struct AllocationOptions {
    // src elements may be memory operands of arithmetic (kernels without a twin).
    bool foldSrc = false;
    // A store to dst ends the life of all of src (any overlap is harmless), or only of the bytes
    // that it covers (src equal to dst is harmless).
    bool storesEndAllOfSrc = true;
    // Sums and products may take their operands in either order. It shows in one thing only: of two
    // NaN the first operand's comes out.
    bool commute = true;
    // Every src element is loaded once, and spilled like any other value.
    bool loadSrcOnce = false;
};

struct Allocation {
    std::vector<MachineInstruction> instructions;
    std::vector<int> slotSizes;  // spill slots; Address{Frame, i} is slot i
    int spills = 0;              // stores to the frame
};

Allocation allocate(const Code& code, const std::vector<int>& order, const Target& target,
                    const AllocationOptions& options);

}  // namespace orvgen::kernelgen
