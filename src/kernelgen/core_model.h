// A small model of an out-of-order core: how many cycles a block takes when it is called back to
// back. It chooses between orders of one kernel; figures to publish are measured.
#pragma once

#include "allocate.h"

namespace orvgen::kernelgen {

double modelCycles(const std::vector<MachineInstruction>& block);

// The least number of cycles that the ports allow for the block's own operations.
double portBound(const std::vector<MachineInstruction>& block);

}  // namespace orvgen::kernelgen
