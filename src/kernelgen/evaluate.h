// Evaluation of a value graph: in the arithmetic of the kernel, and exactly.
#pragma once

#include <vector>

#include "graph.h"

namespace orvgen::kernelgen {

// Runs the graph with the roundings of the kernel, in the current rounding mode. src and dst are
// buffers of the kernel's element type; `scale` is the stored scale (a binary32 value for
// binary32 kernels). Only the elements that the kernel stores are written.
void evaluate(const Graph& graph, const void* src, void* dst, double scale);

// Runs the graph in multiple precision with scale 1. Inputs and outputs are real numbers in memory
// order: two per complex element. An output that is not stored is 0.
std::vector<Real> evaluateExactly(const Graph& graph, const std::vector<Real>& inputs);

}  // namespace orvgen::kernelgen
