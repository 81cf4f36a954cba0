// SPDX-License-Identifier: MIT
// The forward real transforms: half spectrum of N real samples, N = 2..64.
#pragma once

#include <stdexcept>
#include <vector>

#include "flows/flow.h"
#include "kernelgen/kernel.h"
#include "plans.h"

namespace orvgen::realdft {

// The half spectrum, not scaled yet.
template <class V>
flows::Sequence<V> forwardBins(int n, const std::vector<V>& x, kernelgen::Graph* graph = nullptr) {
    return flows::Flow<V>(graph).run(*forwardPlans().plan(n), 1, flows::realNumbers(x));
}

// The terms as they are stored: scaled in the form in which they stand, an imaginary part that
// carries a minus taken from zero, then the one rounding. Empty parts stay empty.
template <class V>
struct Term {
    int bin;
    bool isImaginary;
    V value;
};

template <class V, class Scale>
std::vector<Term<V>> forwardTerms(const flows::Sequence<V>& bins, Scale&& scale) {
    std::vector<Term<V>> terms;
    for (std::size_t k = 0; k < bins.size(); ++k) {
        const V re = bins[k].re.formed();
        if (re.negative()) throw std::logic_error("a real part with a minus");
        terms.push_back(
            {.bin = static_cast<int>(k), .isImaginary = false, .value = narrow(scale(re))});
        if (bins[k].im.isEmpty()) continue;
        terms.push_back({.bin = static_cast<int>(k),
                         .isImaginary = true,
                         .value = narrow(signStep(scale(bins[k].im.formed())))});
    }
    return terms;
}

kernelgen::Graph forwardGraph(int n, PackedFormat format, kernelgen::Arithmetic arithmetic);

}  // namespace orvgen::realdft
