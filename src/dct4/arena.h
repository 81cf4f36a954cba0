// SPDX-License-Identifier: MIT
// The memory of a plan: one block given by the caller, carved from front to back.
//
// The block begins with its only state, the bump pointer: the address at which the next
// allocation starts. The arena knows neither the size of the block nor its end; the sizing pass
// (the functions that end in _mem) is what keeps an allocation inside.
#pragma once

#include <cstdint>
#include <cstring>

namespace orvgen::dct4 {

// The first 8 bytes of the block. The caller's block may lie anywhere, so that the word is read and
// written byte-wise; the compiler makes one move of it.
class Arena {
  public:
    std::uint64_t bump() const {
        std::uint64_t address;
        std::memcpy(&address, word_, sizeof address);
        return address;
    }
    void setBump(std::uint64_t address) { std::memcpy(word_, &address, sizeof address); }

  private:
    unsigned char word_[8];
};
static_assert(sizeof(Arena) == 8 && alignof(Arena) == 1);

extern "C" {

// size rounded up to a multiple of 32.
std::uint64_t orvgAlignSize32Bytes(std::uint64_t size);

// The current end of what is allocated, moved on by the rounded size. Not cleared, never fails.
void* orvgArenaMalloc(Arena* arena, std::uint64_t size);

// Moves the end back by the rounded size, whatever the pointer: only the total of the frees counts.
void orvgArenaFree(Arena* arena, const void* pointer, std::uint64_t size);
}

}  // namespace orvgen::dct4
