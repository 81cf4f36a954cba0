// SPDX-License-Identifier: MIT
// The step between lowering and order that writes straight code with half the instructions: what is
// alike in it goes to both halves of vectors twice as large (pairing.h).
//
// Every operation stays, with its operands and its rounding, and nothing else is computed: idle
// lanes hold zeros, so no exception appears that the code itself would not raise. No access to
// memory reads or writes a byte more than the values that it stands for.
#pragma once

#include <vector>

#include "pairing.h"
#include "passes.h"

namespace orvgen::kernelgen {

// The code in the best forms that the search finds, by what is put together; none, if nothing in it
// is alike.
std::vector<Code> pairForms(const Code& code);

// Two trips of a loop as one: the second works where the pointers of the pass would have moved to.
Code twoTrips(const Code& trip, const Pass& pass);

// The code with the pairs of this pairing as one instruction each: scalars on vectors of 16 bytes,
// vectors of 16 bytes on vectors of 32, pairs of numbers on vectors of four.
Code writeScalarPairs(const Code& code, const DataFlow& flow, const Pairing& pairing);
Code writeVectorPairs(const Code& code, const DataFlow& flow, const Pairing& pairing);
Code writeFours(const Code& code, const DataFlow& flow, const Pairing& pairing);

}  // namespace orvgen::kernelgen
