// SPDX-License-Identifier: MIT
// The operations that results depend on, lane by lane, as one run of a kernel's machine code does
// them: followed backwards from what it leaves in dst. Lanes that idle, because a vector has more
// than the data, are not among them; so the same kernel has the same counts in scalar code, in
// vectors of 16 bytes and in vectors of 32.
#pragma once

#include "support/integer_core.h"

namespace orvgen::test {

struct LiveCounts {
    long additions32 = 0, additions64 = 0;  // and subtractions
    long multiplications32 = 0, multiplications64 = 0;
    long widenings = 0, narrowings = 0;
    bool operator==(const LiveCounts&) const = default;
};

// Throws where the run has an instruction whose lanes it does not know.
LiveCounts liveCounts(const Trace& trace);

}  // namespace orvgen::test
