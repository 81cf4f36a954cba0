// SPDX-License-Identifier: MIT
// What the machine code of a kernel promises, checked on traces of its runs (integer_core.h) and on
// its instructions: straight-line bodies, the instruction set, every access inside its buffer,
// every byte of dst written once, src read before it can be overwritten; and counts of what it
// does.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/integer_core.h"

namespace orvgen::test {

struct ShapeRules {
    std::int64_t srcBytes = 0;
    std::int64_t dstBytes = 0;
    std::int64_t bufferBytes = 0;
    std::int64_t srcBeyond = 0;  // bytes behind src that are read along
    // Byte ranges of src (from, to) that are never read; everything else is.
    std::vector<std::pair<std::int64_t, std::int64_t>> neverRead;
    bool straight = true;        // no loop and no branch after the gate
    bool scalar = false;         // no packed instruction, no 16-byte memory operand
    bool movddup = false;        // the one instruction of SSE3
    bool threeOperands = false;  // AVX and no legacy encoding, as in the second build; else no AVX
    bool allReadsFirst = true;   // else only: no read of a place that in place is already stored to
    int elementBytes = 0;        // size of every access to src and dst; 0: any
    std::int64_t frameLimit = -1;
};

// The body that ran in `trace`, a call that ends with status 0.
std::vector<std::string> checkBody(const Trace& trace, const ShapeRules& rules);

// The instructions of a function, whether they run or not.
std::vector<std::string> checkInstructions(const Function& function, const ShapeRules& rules);

// The instructions that traces ran.
class Coverage {
  public:
    void add(const Trace& trace);
    // The instructions of a function, but for padding, that have not run.
    std::vector<std::string> missing(const Function& function) const;

  private:
    std::set<const Instruction*> ran;
};

struct KernelFacts {
    std::string name;
    std::string twin;          // empty: none
    bool twoBodies = false;    // an alignment-free body in the same function
    int pointerStep = 4;       // alignment of the elements
    bool takesBuffer = false;  // obtains one where the caller gives none
    ShapeRules rules;          // of the aligned body
    ShapeRules twinRules;      // of the twin or second body
};

// A kernel whole: gate and bodies under every flag, alignment and null pointer, twin included. The
// gate compares the flag with 8, 4, 1 and 2 in this order, and tests the alignment only where there
// is another body to choose.
std::vector<std::string> checkKernel(const MachineCode& code, const KernelFacts& facts);

// What one run does, but for its integer instructions.
struct BodyCounts {
    explicit BodyCounts(const Trace& trace);

    long count(Kind kind, Lanes lanes) const;
    long mnemonic(const std::string& name) const;
    long loads(Region region, int size) const { return access(region, size, false); }
    long stores(Region region, int size) const { return access(region, size, true); }
    long stackStores() const;  // of vector registers
    long shuffles() const;     // of all kinds, register and memory forms
    long instructions = 0;     // that ran, integer ones included
    std::int64_t frameBytes = 0;

  private:
    long access(Region region, int size, bool store) const;
    std::map<std::pair<Kind, Lanes>, long> kinds;
    std::map<std::string, long> mnemonics;
    // By region, size and whether it is a store.
    std::map<std::tuple<Region, int, bool>, long> accesses;
};

}  // namespace orvgen::test
