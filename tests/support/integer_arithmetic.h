// SPDX-License-Identifier: MIT
// Sums, bit operations, shifts and products of general registers, with their flags.
#pragma once

#include <optional>

#include "support/integer_state.h"
#include "support/machine_code.h"

namespace orvgen::test {

struct Outcome {
    std::optional<Value> result;  // for the first operand; none: the flags alone
    Flags flags;
};

// What the instruction makes of its operands, which it may not all have. Throws Stop where it is
// not understood.
Outcome calculate(const Instruction& in, Value first, Value second, Value third, Flags flags);

}  // namespace orvgen::test
