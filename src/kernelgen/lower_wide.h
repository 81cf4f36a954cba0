// SPDX-License-Identifier: MIT
// Lowering for batches: from the value graph of one transform to code that computes many of them at
// once, one in each lane of the widest vectors of a target.
//
// Every real number of the graph, lane by lane, becomes a vector of its own with the same operation
// on it, so that each transform has the bits of the single kernel. What no result depends on is not
// computed. Signs move into the next sum or constant, and a product by 1 or -1 of a computed value
// is left out: both are exact in every rounding mode, and FTZ and DAZ treat the factor as they
// treat the product. Nothing else is simplified.
//
// Interleaved elements are taken apart and joined again part by part of a vector, which leaves the
// transforms in another order; where the other side is real, its numbers are permuted.
#pragma once

#include <cstdint>

#include "code.h"
#include "graph.h"
#include "target.h"

namespace orvgen::kernelgen {

// How many transforms a vector holds: as many as it has lanes of the elements' type.
int batchWidth(const Graph& graph, const Target& target);

// What an array of a single kernel holds. The parts of complex numbers stand apart in a batch.
enum class Layout : std::uint8_t {
    Real,
    Complex,     // elements, or bins: real part, imaginary part, ...
    PackedBins,  // the same without the imaginary part of bin 0
};

// Where the parts of complex numbers stand.
enum class Complexes : std::uint8_t {
    Apart,        // in vectors of their own
    Interleaved,  // re im re im ..: the slot of the real part is the first half of the transforms,
                  // that of the imaginary part the second half
};

struct WideOptions {
    int length = 0;  // N: elements of src beyond it, which a single kernel may read, are zeros
    bool halvesOnly = false;  // as in Kernel
    Layout src = Layout::Real, dst = Layout::Real;
    Complexes complexes = Complexes::Apart;
};

// Addresses of src and dst are Address{Src, slot * vectorBytes}: slot n is the real (or the real
// part of the) n-th element of all transforms, slot kImaginarySlots + n the imaginary part; or what
// Complexes says.
inline constexpr int kImaginarySlots = 128;

Code lowerWide(const Graph& graph, const Target& target, const WideOptions& options);

}  // namespace orvgen::kernelgen
