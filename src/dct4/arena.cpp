// SPDX-License-Identifier: MIT
#include "dct4/arena.h"

namespace orvgen::dct4 {

extern "C" {

std::uint64_t orvgAlignSize32Bytes(std::uint64_t size) { return (size + 31) & ~std::uint64_t{31}; }

void* orvgArenaMalloc(Arena* arena, std::uint64_t size) {
    const std::uint64_t start = arena->bump();
    arena->setBump(start + orvgAlignSize32Bytes(size));
    return reinterpret_cast<void*>(start);
}

void orvgArenaFree(Arena* arena, const void*, std::uint64_t size) {
    arena->setBump(arena->bump() - orvgAlignSize32Bytes(size));
}
}

}  // namespace orvgen::dct4
