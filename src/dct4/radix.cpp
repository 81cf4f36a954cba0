// SPDX-License-Identifier: MIT
#include "dct4/radix.h"

namespace orvgen::dct4 {

extern "C" std::int32_t divisorsIntNonTriv(std::int32_t* radix, std::int32_t h) {
    // A candidate is tried from its threshold on; the largest that divides h is taken.
    struct Candidate {
        std::int32_t threshold, divisor;
    };
    constexpr Candidate candidates[] = {{512, 32}, {128, 16}, {32, 8}, {16, 4}, {4, 2}};
    for (const Candidate& candidate : candidates) {
        if (h >= candidate.threshold && h % candidate.divisor == 0) {
            *radix = candidate.divisor;
            return planned;
        }
    }
    return refused;
}

}  // namespace orvgen::dct4
