// SPDX-License-Identifier: MIT
// Where things stand: spill slots in the frame, constants in the pool, values in registers.
#pragma once

#include <vector>

#include "allocate.h"

namespace orvgen::kernelgen {

// Bytes of the frame that the slots fill, a multiple of 16 and of the largest of them.
int frameBytes(const std::vector<int>& slotSizes);

// Places the spill slots, most used ones first; rewrites their addresses to byte offsets.
void layOutFrame(Allocation& allocation);

// Byte offsets of the pool's entries, vectors before scalars and the most used ones first; rewrites
// the addresses.
struct PoolLayout {
    std::vector<int> offset;  // by entry
    std::vector<std::size_t> order;
    int size = 0;
};
PoolLayout layOutPool(const std::vector<PoolEntry>& pool, std::vector<MachineInstruction>& block,
                      int firstOffset);

// Gives the registers new numbers so that those used most have the short encodings.
void renumberRegisters(std::vector<MachineInstruction>& block, const Target& target);

}  // namespace orvgen::kernelgen
