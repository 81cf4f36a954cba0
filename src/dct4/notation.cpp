// SPDX-License-Identifier: MIT
#include "dct4/notation.h"

#include <stdexcept>

#include "dct4/radix.h"

namespace orvgen::dct4 {

namespace {

std::int32_t radixOfHalf(std::int32_t h) {
    std::int32_t r = 0;
    if (divisorsIntNonTriv(&r, h) != planned) {
        throw std::logic_error("a length without a plan");
    }
    return r;
}

// An odd-frequency transform of n points.
std::string oddFrequency(std::int32_t n) {
    if (ruleOfOddFrequency(n) != recursionRule) {
        return std::to_string(n);
    }
    const std::int32_t r = radixOfHalf(n / 2);
    const bool isJoin = ruleOfOddFrequency(n / r) == recursionRule;
    const std::string inner = oddFrequency(n / r);
    return (isJoin ? "(" + inner + ")" : inner) + " T " + std::to_string(r);
}

}  // namespace

std::string notation(std::int32_t length) {
    if (ruleOfLength(length) != treeRule) {
        return "straight line";
    }
    const std::int32_t r = radixOfHalf(length / 2);
    return "r = " + std::to_string(r) + ", n = " + oddFrequency(length / r);
}

}  // namespace orvgen::dct4
