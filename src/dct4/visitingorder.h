// SPDX-License-Identifier: MIT
// The order in which a kernel of the second stage takes its inputs p = 0 .. r - 1.
//
// r = 1, 2 take them as they come. r = 4, 8, 16 take the pairs (p, r - 1 - p) that a radix-2 level
// adds and subtracts; r = 32 takes the quadruples (j, 31 - j, 16 + j, 15 - j) of a radix-4 level,
// with j = 0, 4, 8, 12 before 1, 5, 9, 13.
#pragma once

#include <cstdint>

namespace orvgen::dct4 {

constexpr std::int32_t visitingOrder(std::int32_t r, std::int32_t position) {
    if (r <= 2) {
        return position;
    }
    if (r < 32) {
        const std::int32_t p = position / 2;
        return position % 2 == 0 ? p : r - 1 - p;
    }
    const std::int32_t quadruple = position / 4;
    const std::int32_t j = quadruple / 4 + 4 * (quadruple % 4);
    switch (position % 4) {
        case 0:
            return j;
        case 1:
            return 31 - j;
        case 2:
            return 16 + j;
        default:
            return 15 - j;
    }
}

}  // namespace orvgen::dct4
