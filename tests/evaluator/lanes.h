// SPDX-License-Identifier: MIT
// Instructions that move the words of vectors and compute nothing.
#pragma once

#include <string_view>

#include "evaluator/state.h"

namespace orvgen::test::evaluator {

// What executes the instruction of that name, without the v of its longer encodings; null where it
// is none of these. Everything else in op is known already; where the words go is left in op.pick.
Handler lanesHandler(std::string_view name, Operation& op);

}  // namespace orvgen::test::evaluator
