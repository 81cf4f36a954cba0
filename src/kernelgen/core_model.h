// Small models of out-of-order cores: how many cycles a block takes when it is called back to back.
// They choose between orders of one kernel; figures to publish are measured.
#pragma once

#include "allocate.h"

namespace orvgen::kernelgen {

// The wide server cores that kernels are ordered for; none of the two is preferred.
enum class CoreKind : std::uint8_t {
    ThreePipe,  // add and shuffle on two ports, mul on two, three in all
    FourPipe,   // add on two ports, mul on two others, shuffle on one of each
};

double modelCycles(const std::vector<MachineInstruction>& block, CoreKind kind);

// The least number of cycles that the ports allow for the block's own operations.
double portBound(const std::vector<MachineInstruction>& block, CoreKind kind);

}  // namespace orvgen::kernelgen
