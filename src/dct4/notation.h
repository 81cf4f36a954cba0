// SPDX-License-Identifier: MIT
// How a length of the DCT-IV is computed, in one line and node by node.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvgen::dct4 {

// "straight line" or "r = 32, n = 16 T 8": the radix of the second stage, and the odd-frequency
// transform of the first one as its joins, inner kernels first. For lengths that have a plan.
std::string notation(std::int32_t length);

// The nodes of the plan with what they compute, by which function and in which file: a line each,
// parts two columns further in than the whole.
std::vector<std::string> planNodes(std::int32_t length);

}  // namespace orvgen::dct4
