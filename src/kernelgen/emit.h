// SPDX-License-Identifier: MIT
// Assembly text of allocated code.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "code.h"
#include "target.h"

namespace orvgen::kernelgen {

// Which moves touch src and dst.
enum class Variant : std::uint8_t { Aligned, AnyAlignment };

// The general register that an address base lives in, and what has been added to it; further
// registers with which short displacements reach more of the same memory.
struct Binding {
    std::string reg;
    int bias = 0;
    std::vector<Binding> further = {};

    // Whether a one-byte displacement will do. It counts bytes, or whole operands of `unit` bytes.
    bool reaches(int offset, int unit) const;
    // The first of the registers that reaches the offset; this one if none does.
    const Binding& nearest(int offset, int unit) const;
};
using Addressing = std::map<Base, Binding>;

// A place in memory that an instruction touches.
struct Place {
    Address address;
    int unit = 1;  // of its displacement
};
std::vector<Place> placesOf(const MachineInstruction& m, const Target& target);

// The lines of one instruction (a pseudo instruction has several).
std::vector<std::string> printInstruction(const MachineInstruction& m, const Addressing& addressing,
                                          const Target& target, Variant variant);

// How many instructions a block is when it is assembled for aligned buffers.
int instructionCount(const std::vector<MachineInstruction>& block, const Target& target);

// The directive and comment of one pool entry.
std::string printPoolEntry(const PoolEntry& entry);

}  // namespace orvgen::kernelgen
