// SPDX-License-Identifier: MIT
// A thread's memory for blocks of transforms.
#pragma once

#include <vector>

#include "job.h"

namespace orvgen::python {

// A block of transforms and the library's own scratch stay in the first-level cache.
inline constexpr std::ptrdiff_t kBlockBytes = 1 << 14;

class Scratch {
  public:
    // Places for `count` transforms of `len` elements of `size` bytes, arranged as `like` are. What
    // was taken before is lost.
    Places take(std::ptrdiff_t count, std::ptrdiff_t len, std::ptrdiff_t size, const Places& like) {
        const auto needed = static_cast<std::size_t>(count * len * size) + kAlign;
        if (bytes_.size() < needed) bytes_.resize(needed);
        const auto at = reinterpret_cast<std::uintptr_t>(bytes_.data());
        char* start = bytes_.data() + (kAlign - at % kAlign) % kAlign;
        return like.columns() ? Places{start, count * size, size} : Places{start, size, len * size};
    }
    // Gives back what only long transforms need.
    void tidy() {
        if (bytes_.size() > 4 * kBlockBytes) std::vector<char>().swap(bytes_);
    }

  private:
    static constexpr std::uintptr_t kAlign = 64;
    std::vector<char> bytes_;
};

// The calling thread's: one for what goes in, one for what comes out.
struct Scratches {
    Scratch in, out;
};
inline Scratches& scratches() {
    static thread_local Scratches ofThread;
    return ofThread;
}

}  // namespace orvgen::python
