// SPDX-License-Identifier: MIT
// The choice of a radix, and of a kernel by size.
#pragma once

#include <cstdint>

namespace orvgen::dct4 {

constexpr std::int32_t planned = 0;
constexpr std::int32_t refused = -6;

// Position of a power of two in 2, 4, 8, 16, 32 (counted from 1); 0 for every other number.
constexpr std::int32_t ruleOfPower(std::int32_t size) {
    switch (size) {
        case 2:
            return 1;
        case 4:
            return 2;
        case 8:
            return 3;
        case 16:
            return 4;
        case 32:
            return 5;
        default:
            return 0;
    }
}

// env1: a length with a straight-line body, or the two-stage tree.
constexpr std::int32_t treeRule = 6;
constexpr std::int32_t ruleOfLength(std::int32_t length) {
    const std::int32_t rule = ruleOfPower(length);
    return rule != 0 ? rule : treeRule;
}

// env4: the radix of the second stage; 0 is a failure.
constexpr std::int32_t ruleOfStageTwo(std::int32_t r) {
    if (r == 1) {
        return 1;
    }
    const std::int32_t rule = ruleOfPower(r);
    return rule != 0 ? rule + 1 : 0;
}

// env5, env9: the size of an odd-frequency transform; what has no kernel recurses through env7.
constexpr std::int32_t recursionRule = 7;
constexpr std::int32_t ruleOfOddFrequency(std::int32_t n) {
    if (n == 64) {
        return 6;
    }
    const std::int32_t rule = ruleOfPower(n);
    return rule != 0 ? rule : recursionRule;
}

// Writes the radix for h (half of the size to split) and returns 0; or writes nothing and returns
// -6.
extern "C" std::int32_t divisorsIntNonTriv(std::int32_t* radix, std::int32_t h);

}  // namespace orvgen::dct4
