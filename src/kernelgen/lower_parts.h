// SPDX-License-Identifier: MIT
// Lowering for batches of complex elements: the single kernel's own code, each of its vectors of 16
// bytes repeated in every part of a wider one, which is another transform.
#pragma once

#include <cstdint>

#include "code.h"
#include "graph.h"
#include "target.h"

namespace orvgen::kernelgen {

inline constexpr int kPartBytes = 16;

// Where the 16 bytes of the transforms stand.
enum class Parts : std::uint8_t {
    OfRows,     // far from each other
    OfColumns,  // side by side: addresses of src and dst are Address{Src, slot * vectorBytes}
};

Code lowerParts(const Graph& graph, const Target& target, Parts parts);

}  // namespace orvgen::kernelgen
