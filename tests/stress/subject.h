// SPDX-License-Identifier: MIT
// Everything that takes src, dst and a flag, by the lists of the public header: each fixed-length
// kernel and each Walsh-Hadamard order, with its by-length function.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "stress/processor.h"

namespace orvgen::test {

struct Subject {
    std::string name;
    int number = 0;  // length or order
    int first = 0;   // of the family
    int last = 0;
    PlainFunction kernel = nullptr;
    PlainFunction twin = nullptr;  // null: none
    PlainFunction byNumber = nullptr;
    bool single = true;
    bool complex = false;
    bool order = false;
    std::size_t srcBytes = 0, dstBytes = 0;
    std::size_t beyondBytes = 0;  // behind src, read along
    std::size_t bufferBytes = 0;

    std::size_t realBytes() const { return single ? 4 : 8; }
    std::size_t readBytes() const { return srcBytes + beyondBytes; }
    // The arguments of the kernel and its twin, and of the by-length function.
    Arguments arguments(const void* src, void* dst, std::int32_t flag, void* buffer) const;
    Arguments byNumberArguments(const void* src, void* dst, std::int32_t n, std::int32_t flag,
                                void* buffer) const;
};

const std::vector<Subject>& subjects();

// Uninitialised bytes on a 64-byte boundary.
class Block {
  public:
    explicit Block(std::size_t bytes);
    std::uint8_t* data() const { return memory_.get(); }

  private:
    std::unique_ptr<std::uint8_t, void (*)(void*)> memory_;
};

// Writes ordinary numbers, from -1 to 1, the same for the same seed.
void fillOrdinary(std::uint8_t* at, std::size_t bytes, bool single, unsigned seed);

}  // namespace orvgen::test
