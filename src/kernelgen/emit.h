// Assembly text of allocated code.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "allocate.h"

namespace orvgen::kernelgen {

// Which moves touch src and dst.
enum class Variant : std::uint8_t { Aligned, AnyAlignment };

// The general register that an address base lives in, and what has been added to it; further
// registers with which one-byte displacements reach more of the same memory.
struct Binding {
    std::string reg;
    int bias = 0;
    std::vector<Binding> further = {};

    // Whether a one-byte displacement will do.
    bool reaches(int offset) const { return offset - bias >= -128 && offset - bias <= 127; }
    // The first of the registers that reaches the offset; this one if none does.
    const Binding& nearest(int offset) const;
};
using Addressing = std::map<Base, Binding>;

// The name of a twin: owng for orvg in front, _unaligned behind.
std::string twinName(const std::string& kernel);

// Gives the sixteen registers new numbers so that those used most have the short encodings.
void renumberRegisters(std::vector<MachineInstruction>& block);

// Places the spill slots, most used ones first; rewrites the addresses to byte offsets. Returns the
// size in bytes, a multiple of 16.
int layOutFrame(Allocation& allocation);

// Byte offsets of the pool's entries, most used ones first; rewrites the addresses.
struct PoolLayout {
    std::vector<int> offset;  // by entry
    std::vector<std::size_t> order;
    int size = 0;
};
PoolLayout layOutPool(const std::vector<PoolEntry>& pool, std::vector<MachineInstruction>& block,
                      int firstOffset);

// The lines of one instruction (a pseudo instruction has several).
std::vector<std::string> printInstruction(const MachineInstruction& m, const Addressing& addressing,
                                          Variant variant);

// The directive and comment of one pool entry.
std::string printPoolEntry(const PoolEntry& entry);

}  // namespace orvgen::kernelgen
