// SPDX-License-Identifier: MIT
// Operands and results of instructions on vectors.
#pragma once

#include "evaluator/state.h"

namespace orvgen::test::evaluator {

inline std::uint8_t* bytesOf(Vector& v) { return reinterpret_cast<std::uint8_t*>(&v); }
inline const std::uint8_t* bytesOf(const Vector& v) {
    return reinterpret_cast<const std::uint8_t*>(&v);
}

inline std::uint8_t* memoryOf(const State& s, const Operation& op) {
    const std::uint64_t at = addressOf(s, op);
    if (op.aligned && at % op.memoryBytes != 0) throw Stop{"an aligned access off its boundary"};
    return pointer<std::uint8_t>(at);
}

// A source, 1 or 2; `room` takes what stands in memory.
inline const Vector& source(const State& s, const Operation& op, int which, Vector& room) {
    if (op.memoryOperand != which) return s.vectors[which == 1 ? op.first : op.second];
    const std::uint8_t* const from = memoryOf(s, op);
    if (!op.repeats) {
        copyBytes(&room, from, op.memoryBytes);
    } else {
        for (int at = 0; at < op.width; at += op.memoryBytes)
            copyBytes(bytesOf(room) + at, from, op.memoryBytes);
    }
    return room;
}

// The result: into a register or into memory.
inline void put(State& s, const Operation& op, const Vector& result) {
    if (op.memoryOperand == 0) return copyBytes(memoryOf(s, op), &result, op.memoryBytes);
    Vector& to = s.vectors[op.to];
    copyBytes(&to, &result, op.width);
    if (!op.keepsUpper) std::memset(bytesOf(to) + op.width, 0, sizeof(Vector) - op.width);
}

}  // namespace orvgen::test::evaluator
