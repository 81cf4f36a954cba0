// SPDX-License-Identifier: MIT
// The flows of the complex binary32 kernels.
#pragma once

#include "butterflies.h"
#include "kernelgen/graph.h"

namespace orvgen::dft {

// Lengths 2 to 5, on real scalars: sums of inputs and the last sums are binary32, each sum of
// products with a butterfly constant is binary64 and rounded once. V is a Value or a Number.
template <class V>
std::vector<Complex<V>> scalarTransform(Direction direction, const std::vector<Complex<V>>& x) {
    return x.size() == 5 ? five(direction, x, Centre::First) : butterfly(direction, x);
}
kernelgen::Graph scalarFlow(Direction direction, int length);

// Lengths 6 to 64, in four lanes, binary32 throughout.
kernelgen::Graph laneFlow(Direction direction, int length);

}  // namespace orvgen::dft
