// SPDX-License-Identifier: MIT
// Arithmetic on vectors, by the host's own instructions for vectors of 16 bytes: its control word
// rounds, flushes and collects exceptions for the evaluated processor too.
#pragma once

#include <string_view>

#include "evaluator/state.h"

namespace orvgen::test::evaluator {

// What executes the instruction of that name, without the v of its longer encodings; null where it
// is no arithmetic. Everything else in op is known already.
Handler arithmeticHandler(std::string_view name, const Operation& op);

}  // namespace orvgen::test::evaluator
