// The forward real transforms: half spectrum of N real samples, N = 2..64.
#pragma once

#include <stdexcept>
#include <vector>

#include "flows/blocks.h"
#include "kernelgen/kernel.h"
#include "packed_format.h"

namespace orvgen::realdft {

// The plans of the forward transforms, and the places that carry on unrounded.
const flows::Plans& forwardPlans();
const std::vector<flows::Carry>& forwardCarries();
// How length n is made, as the table of plans has it.
std::string forwardMethod(int n);

// The half spectrum, not scaled yet.
template <class V>
flows::Bins<V> forwardBins(int n, const std::vector<V>& x, kernelgen::Graph* graph = nullptr) {
    flows::Flow<V> flow(forwardPlans(), graph);
    for (const flows::Carry& c : forwardCarries())
        if (c.length == n) flow.carry(c.place);
    return flow.real(flows::parsePlan(std::to_string(n)), 1, x);
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
std::vector<Term<V>> forwardTerms(const flows::Bins<V>& bins, Scale&& scale) {
    std::vector<Term<V>> terms;
    for (std::size_t k = 0; k < bins.size(); ++k) {
        const V re = bins[k].re.formed();
        if (re.negative()) throw std::logic_error("a real part with a minus");
        terms.push_back({static_cast<int>(k), false, narrow(scale(re))});
        if (bins[k].im.isEmpty()) continue;
        terms.push_back({static_cast<int>(k), true, narrow(signStep(scale(bins[k].im.formed())))});
    }
    return terms;
}

kernelgen::Graph forwardGraph(int n, PackedFormat format, kernelgen::Arithmetic arithmetic);

}  // namespace orvgen::realdft
