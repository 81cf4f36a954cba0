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

// Each order lists all instructions (as indices), operands before users.
std::vector<std::vector<int>> candidateOrders(const Code& code, const Target& target);

}  // namespace orvgen::kernelgen
