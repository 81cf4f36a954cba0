// SPDX-License-Identifier: MIT
#include "cycles.h"

#include <algorithm>

namespace orvgen::bench {
namespace {

// 64 dependent additions a round; adding a register is one cycle on every x86-64 core (an immediate
// may be folded away at renaming).
std::uint64_t chain(std::uint64_t rounds) {
    std::uint64_t sum = 1;
    const std::uint64_t step = rounds;
    const std::uint64_t start = ticks();
    asm volatile(
        "1:\n"
        ".rept 64\n"
        "add %[step], %[sum]\n"
        ".endr\n"
        "dec %[rounds]\n"
        "jne 1b\n"
        : [sum] "+r"(sum), [rounds] "+r"(rounds)
        : [step] "r"(step)
        : "cc");
    return ticks() - start;
}

}  // namespace

double ticksPerCycle() {
    // The difference of two lengths leaves out what starting and stopping cost; the smallest of
    // several is the one that nothing disturbed.
    std::uint64_t shortest = ~std::uint64_t{0}, longest = ~std::uint64_t{0};
    for (int i = 0; i < 5; ++i) {
        shortest = std::min(shortest, chain(20));
        longest = std::min(longest, chain(220));
    }
    return static_cast<double>(longest - shortest) / (64.0 * 200.0);
}

double emptyTicks() {
    std::uint64_t least = ~std::uint64_t{0};
    for (int i = 0; i < 20; ++i) {
        const std::uint64_t start = ticks();
        least = std::min(least, ticks() - start);
    }
    return static_cast<double>(least);
}

}  // namespace orvgen::bench
