// The decompositions of the complex binary32 kernels, all lengths in one table.
#pragma once

#include "decomposition.h"

namespace orvgen::dft {

// The arrangement of a composite length, or the block of a prime one.
Part singleDecomposition(std::size_t length);

}  // namespace orvgen::dft
