// SPDX-License-Identifier: MIT
#include "operations.h"

#include <bit>

namespace orvgen::generator {

using namespace kernelgen;

namespace {

int layersOf(const Kernel& kernel) {
    return std::countr_zero(static_cast<unsigned>(kernel.length));
}

}  // namespace

Operations operationsOf(const Kernel& kernel) {
    if (kernel.passes)  // a Walsh-Hadamard kernel: log2(N) layers of N additions
        return {.additions = layersOf(kernel) * kernel.length, .scaleProducts = kernel.length};
    if (kernel.flow.arithmetic() == Arithmetic::SingleLanes) {
        const LaneCounts c = countLanes(kernel.flow);
        return {.additions = c.distinctAdditions,
                .constantProducts = c.distinctMultiplications,
                .scaleProducts = 2 * kernel.length,
                .lanes = c};
    }
    const bool pairs = kernel.flow.arithmetic() == Arithmetic::DoublePair;
    const int lanes = pairs ? 2 : 1;
    const Counts c = countOperations(kernel.flow);
    return {.additions = lanes * c.additions,
            .signSteps = lanes * c.signSteps,
            .constantProducts = lanes * c.constantProducts,
            .doublings = lanes * c.doublings,
            .scaleProducts = lanes * c.scaleProducts,
            .conversions = c.conversions(),
            .inPairs = pairs};
}

// Every layer doubles magnitudes and errors and adds a rounding of half a unit of what it gives: of
// log2(N) layers together log2(N) N u.
ErrorBound errorBoundOf(const Kernel& kernel) {
    if (!kernel.passes) return errorBound(kernel.flow);
    const double N = kernel.length;
    return {N * layersOf(kernel), N};
}

}  // namespace orvgen::generator
