// SPDX-License-Identifier: MIT
// An a-priori bound on the rounding error of a flow, by running error analysis (Wilkinson).
#pragma once

#include "graph.h"

namespace orvgen::kernelgen {

// For inputs of magnitude at most 1 (each real part), scale 1: the largest possible error of an
// output and the largest possible output, to first order in the unit roundoff. The error is in
// units of u: 2^-24 where outputs are binary32, 2^-53 where they are binary64.
struct ErrorBound {
    double absolute = 0;
    double magnitude = 0;
};
ErrorBound errorBound(const Graph& graph);

}  // namespace orvgen::kernelgen
