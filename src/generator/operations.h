// SPDX-License-Identifier: MIT
// The operations of any kernel, whichever way its flow is written down, and the bound on its error.
#pragma once

#include <optional>

#include "kernelgen/count.h"
#include "kernelgen/error_bound.h"
#include "kernelgen/kernel.h"

namespace orvgen::generator {

// Real operations. In four-lane kernels those on distinct values; lanes that hold zeros or repeat
// each other make more run than there are, and `lanes` says how many.
struct Operations {
    int additions = 0;         // sums and differences, sign steps included
    int signSteps = 0;         // subtractions from zero
    int constantProducts = 0;  // by a constant other than 2
    int doublings = 0;
    int scaleProducts = 0;
    int conversions = 0;
    bool inPairs = false;  // two in an instruction
    std::optional<kernelgen::LaneCounts> lanes = {};

    int multiplications() const { return constantProducts + doublings + scaleProducts; }
};
Operations operationsOf(const kernelgen::Kernel& kernel);

kernelgen::ErrorBound errorBoundOf(const kernelgen::Kernel& kernel);

}  // namespace orvgen::generator
