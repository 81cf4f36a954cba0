// SPDX-License-Identifier: MIT
// What the fuzz targets share: memory in which every stray write is seen, and what the input says.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>
#include <orvgen.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "support/guarded.h"

namespace orvgen::test::fuzz {

using Input = FuzzedDataProvider;

// The target: each has one.
void fuzz(Input& input);

// Ends the run, so that the input is kept.
inline void require(bool condition, const char* promise) {
    if (condition) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

inline bool isFlag(std::int32_t flag) { return flag == 1 || flag == 2 || flag == 4 || flag == 8; }
inline std::int32_t anyFlag(Input& input) {
    return input.ConsumeBool() ? input.PickValueInArray({1, 2, 4, 8})
                               : input.ConsumeIntegral<std::int32_t>();
}

// Elements of any kind: any bits, or ordinary numbers, with some bytes of the input among them.
inline std::vector<std::uint8_t> anyBytes(Input& input, std::size_t count) {
    std::minstd_rand random(input.ConsumeIntegral<std::uint16_t>() + 1U);
    const bool ordinary = input.ConsumeBool();
    const auto some = input.ConsumeRemainingBytes<std::uint8_t>();
    std::vector<std::uint8_t> bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<std::uint8_t>(random() >> 8);
        // Sign and upper exponent of both types: magnitudes below 2.
        if (ordinary && i % 4 == 3) bytes[i] = static_cast<std::uint8_t>(0x3f | (bytes[i] & 0x80));
    }
    std::copy_n(some.begin(), std::min(some.size(), count), bytes.begin());
    return bytes;
}

// Pages between two that nobody may touch, and a piece of them, at the end or somewhat before it.
// What lies around the piece is watched.
class Area {
  public:
    explicit Area(std::size_t bytes) : pages(bytes) {}

    // `gap` bytes between the piece and the forbidden page; what was there before is forgotten.
    std::uint8_t* place(std::size_t bytes, std::size_t gap) {
        size = bytes;
        at = pages.end() - gap - bytes;
        watched = std::min<std::size_t>(static_cast<std::size_t>(at - pages.data()), 256);
        std::memset(at - watched, canary, watched + bytes + gap);
        return at;
    }
    std::uint8_t* data() const { return at; }
    bool untouchedAround() const { return all(at - watched, at) && all(at + size, pages.end()); }
    bool untouched() const { return untouchedAround() && all(at, at + size); }

  private:
    static constexpr std::uint8_t canary = 0xA5;
    GuardedMemory pages;
    std::uint8_t* at = nullptr;
    std::size_t size = 0, watched = 0;

    static bool all(const std::uint8_t* from, const std::uint8_t* to) {
        for (; from < to; ++from)
            if (*from != canary) return false;
        return true;
    }
};

}  // namespace orvgen::test::fuzz
