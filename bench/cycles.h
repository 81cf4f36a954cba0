// SPDX-License-Identifier: MIT
// Time in core cycles. The time stamp counter ticks at a fixed rate while the core's clock moves; a
// chain of dependent additions, one cycle each, tells how many ticks a cycle takes right now.
#pragma once

#include <x86intrin.h>

#include <cstdint>

namespace orvgen::bench {

inline std::uint64_t ticks() {
    unsigned core;
    _mm_lfence();
    const std::uint64_t t = __rdtscp(&core);
    _mm_lfence();
    return t;
}

// Ticks for one core cycle at this moment (some ten microseconds of measuring).
double ticksPerCycle();

// Ticks that a measurement of nothing takes.
double emptyTicks();

}  // namespace orvgen::bench
