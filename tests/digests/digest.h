// SPDX-License-Identifier: MIT
// A digest of results: 64 bits in which every bit of every value counts, all NaN being one value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace orvgen::test {

class Digest {
  public:
    void add(std::uint64_t word) {
        state = (state ^ word) * 0x9e3779b97f4a7c15U;  // the golden ratio, as an odd number
        state ^= state >> 29;
    }
    void add(const std::vector<std::uint64_t>& words) {
        for (const std::uint64_t w : words) add(w);
    }
    void add(std::string_view text) {
        add(text.size());
        for (const char c : text) add(static_cast<unsigned char>(c));
    }
    std::uint64_t value() const { return state; }

  private:
    std::uint64_t state = 0xcbf29ce484222325U;
};

}  // namespace orvgen::test
