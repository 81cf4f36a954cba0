// SPDX-License-Identifier: MIT
// Evaluation of a value graph in multiple precision: the proof of a flow.
#pragma once

#include <vector>

#include "graph.h"
#include "real.h"

namespace orvgen::kernelgen {

// Runs the graph in multiple precision with scale 1. Inputs and outputs are real numbers in memory
// order: two per complex element. An output that is not stored is 0.
std::vector<Real> evaluateExactly(const Graph& graph, const std::vector<Real>& inputs);

}  // namespace orvgen::kernelgen
