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

namespace orvgen::kernelgen {

// Scalar code as code for vectors of two lanes, in the best form that the search finds first;
// nothing, if nothing in it is alike.
std::vector<Code> pairScalars(const Code& code);

// The code with the pairs of this pairing as instructions on vectors of two lanes. Two numbers of
// binary32 stand in the lower half of a vector whose upper half is zero.
Code writeScalarPairs(const Code& code, const DataFlow& flow, const Pairing& pairing);

}  // namespace orvgen::kernelgen
