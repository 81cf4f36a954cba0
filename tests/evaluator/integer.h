// SPDX-License-Identifier: MIT
// Instructions on general registers.
#pragma once

#include <string_view>

#include "evaluator/state.h"

namespace orvgen::test::evaluator {

// What executes the instruction of that name; null where it is none of these. Those with a
// condition leave it in op.condition.
Handler integerHandler(std::string_view name, Operation& op);

inline void push(State& s, std::uint64_t value) {
    s.general[rsp] -= 8;
    std::memcpy(pointer<void>(s.general[rsp]), &value, 8);
}
inline std::uint64_t pop(State& s) {
    std::uint64_t value = 0;
    std::memcpy(&value, pointer<void>(s.general[rsp]), 8);
    s.general[rsp] += 8;
    return value;
}

}  // namespace orvgen::test::evaluator
