// SPDX-License-Identifier: MIT
// Proof of complex flows on unit vectors, in multiple precision.
#pragma once

#include "flows/direction.h"
#include "kernelgen/graph.h"
#include "kernelgen/real.h"

namespace orvgen::test {

// The largest difference between the flow and the matrix exp(-+ 2 pi i n k / N), over both parts
// of all coefficients. Throws unless exactly the elements of src and dst are read and written.
kernelgen::Real complexProofError(const kernelgen::Graph& graph, flows::Direction direction,
                                  int length);

}  // namespace orvgen::test
