// SPDX-License-Identifier: MIT
// Evaluation of a value graph in the arithmetic of the kernel: the reference for its bits.
#pragma once

#include "graph.h"

namespace orvgen::kernelgen {

// Runs the graph with the roundings of the kernel, in the current rounding mode. src and dst are
// buffers of the kernel's element type; `scale` is the stored scale (a binary32 value for
// binary32 kernels). Only the elements that the kernel stores are written.
void evaluate(const Graph& graph, const void* src, void* dst, double scale);

}  // namespace orvgen::kernelgen
