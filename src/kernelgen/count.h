// SPDX-License-Identifier: MIT
// Counting the operations of a value graph.
#pragma once

#include "graph.h"

namespace orvgen::kernelgen {

// Scalar and pair graphs: every node is one operation (a pair graph's node is two real ones).
struct Counts {
    int additions = 0;         // sums and differences, sign steps included
    int signSteps = 0;         // subtractions from zero
    int constantProducts = 0;  // products by a constant other than 2
    int doublings = 0;         // products by the constant 2
    int scaleProducts = 0;
    int widenings = 0;  // of data; that of the scale is not counted
    int narrowings = 0;
    int swaps = 0;
    int flips = 0;

    int conversions() const { return widenings + narrowings; }
    int multiplications() const { return constantProducts + doublings + scaleProducts; }
};
Counts countOperations(const Graph& graph);

// Four-lane graphs. Each operation is looked at lane by lane; scale products are left out.
struct LaneCounts {
    // Operations that say something: none on a lane that is zero, none by 1 or -1, equal ones (up
    // to sign) once.
    int distinctAdditions = 0;
    int distinctMultiplications = 0;
    // Those of the distinct multiplications whose operand depends on real and on imaginary parts.
    int mixedMultiplications = 0;
    // Operations whose result is not identically zero.
    int liveAdditions = 0;
    int liveMultiplications = 0;
    // All lanes that run.
    int executedAdditions = 0;
    int executedMultiplications = 0;
};
LaneCounts countLanes(const Graph& graph);

}  // namespace orvgen::kernelgen
