// SPDX-License-Identifier: MIT
// Orders in which the instructions of a basic block may run.
//
// No single order is best for all kernels, so several are made and the core model picks: the order
// of the flow, depth first from the results, recursive bisection, each as it stands and followed by
// a list scheduler that looks at a small window and keeps the number of live values within the
// registers.
#pragma once

#include <vector>

#include "code.h"
#include "target.h"

namespace orvgen::kernelgen {

// How many are made. Where every value is a whole vector, so that thousands of instructions wait
// for the same few ports, the shorter search finds what the long one does, within half a percent:
// depth first never wins there, and the limit of live values makes no difference.
enum class Search : std::uint8_t { Long, Short };

// Each order lists all instructions (as indices), operands before users.
std::vector<std::vector<int>> candidateOrders(const Code& code, const Target& target,
                                              Search search = Search::Long);

}  // namespace orvgen::kernelgen
