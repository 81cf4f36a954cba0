// SPDX-License-Identifier: MIT
// Machine code as operations of the evaluator. The instructions that it knows are a closed list,
// those that the compilers make of the batch library; an unknown one stops the evaluation when it
// is to be executed, with its name.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "evaluator/state.h"

namespace orvgen::test::evaluator {

struct Decoded {
    Operation operation;
    int length;
    bool leaves;  // jumps, calls, returns: what follows may be executed or not
};

class Decoder {
  public:
    Decoder();
    ~Decoder();
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    // The instruction at the beginning of `bytes`, which stands at `address`.
    Decoded decode(std::span<const std::uint8_t> bytes, std::uint64_t address) const;
    static std::string text(std::span<const std::uint8_t> bytes, std::uint64_t address);

    // The same instruction with its two sources in each other's place, if it is as long; else
    // nothing.
    std::vector<std::uint8_t> exchanged(std::span<const std::uint8_t> bytes) const;

  private:
    struct Library;
    std::unique_ptr<Library> library_;
};

}  // namespace orvgen::test::evaluator
