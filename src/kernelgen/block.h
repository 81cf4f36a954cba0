// SPDX-License-Identifier: MIT
// Straight code on the registers of a target, in the fastest of the orders that are tried.
#pragma once

#include <optional>

#include "allocate.h"
#include "order.h"

namespace orvgen::kernelgen {

struct Block {
    std::vector<MachineInstruction> instructions;  // addresses of the pool are entry numbers still
    std::vector<std::string> stages;
    std::vector<PoolEntry> pool;
    ScaleForm scale;
    int frameBytes = 0;
    int spills = 0;
    double modelCycles = 0;
    double portBound = 0;
    double cost = 0;  // what the order was chosen by: cycles, spills, instructions
};

// Orders that need a larger frame than `frameLimit` are passed over; a negative one is none.
// Nothing, if there is no other order.
std::optional<Block> tryBlock(const Code& code, const Target& target,
                              const AllocationOptions& options, int frameLimit = -1,
                              Search search = Search::Long);
// The same; throws.
Block compileBlock(const Code& code, const Target& target, const AllocationOptions& options,
                   int frameLimit = -1, Search search = Search::Long);

// The best block of several codes for the same work.
Block compileForms(const std::vector<Code>& forms, const Target& target,
                   const AllocationOptions& options, int frameLimit = -1);

}  // namespace orvgen::kernelgen
