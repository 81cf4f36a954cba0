// SPDX-License-Identifier: MIT
// What one transform answers, as digests.
#pragma once

#include <cstdint>

#include "digests/fixed_inputs.h"
#include "digests/library.h"

namespace orvgen::test {

// Of the results for one kind of input under all flags and rounding modes. Buffers off their
// boundary and a shared one count where they give other bits.
std::uint64_t resultDigest(const Transform& transform, InputKind kind);

// Of the statuses of refused calls, and of what they wrote.
std::uint64_t refusalDigest(const Transform& transform);

}  // namespace orvgen::test
