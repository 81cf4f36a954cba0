// SPDX-License-Identifier: MIT
// An evaluator of machine code: it executes the functions of a library of this program instruction
// by instruction, as a processor that has AVX-512 would, whether the processor at hand has it or
// not. Registers are its own; memory, control word and exceptions are the program's. Calls that
// leave the library are made as they are.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "evaluator/decode.h"
#include "support/guarded.h"

namespace orvgen::test::evaluator {

class Processor {
  public:
    // Of the library that the function belongs to.
    Processor(const void* function, const Features& features);

    // The result of a call with so many integers and pointers. Where it comes to no good end,
    // complaint() says why: an unknown instruction, a register of the caller that is not what it
    // was, upper halves of vectors in use when the library is left.
    std::uint64_t call(const void* function, std::span<const std::uint64_t> arguments);
    const std::string& complaint() const { return complaint_; }

    // Instructions executed so far, and whether those at the address, where something leads to,
    // have been among them.
    std::uint64_t executed() const { return executed_; }
    bool hasBeenAt(const void* address) const {
        return reached_.contains(reinterpret_cast<std::uint64_t>(address));
    }
    // From now on these bytes stand at the address, for this processor only.
    void plant(std::uint64_t address, std::span<const std::uint8_t> bytes);
    void takeOut();
    // The instructions of a function of that size.
    struct Line {
        std::uint64_t address;
        std::string text;
        std::vector<std::uint8_t> bytes;
    };
    std::vector<Line> listing(const void* function, std::uint64_t size) const;

  private:
    struct Range {
        std::uint64_t begin = 0, end = 0;
        bool has(std::uint64_t at) const { return at >= begin && at < end; }
    };
    // Instructions that are executed one after the other.
    struct Block {
        std::vector<Operation> operations;
        std::uint64_t end;
    };
    std::vector<std::uint8_t> bytesAt(std::uint64_t address) const;
    const Block& blockAt(std::uint64_t address);
    void run();
    void leave();
    bool leadsToCode(std::uint64_t address);
    void checkUpperHalves(const char* when) const;
    void spoil();

    Range code_;
    Decoder decoder_;
    GuardedMemory stack_;
    State state_{};
    const Operation* now_ = nullptr;
    std::unordered_map<std::uint64_t, Block> blocks_;
    std::size_t kept_ = 0;
    std::unordered_set<std::uint64_t> reached_, outside_;
    std::map<std::uint64_t, std::uint8_t> planted_;
    std::string complaint_;
    std::uint64_t executed_ = 0;
};

}  // namespace orvgen::test::evaluator
