// SPDX-License-Identifier: MIT
// The flows on plain numbers: compiled once, for all tests that compare them with graphs.
#include "flows/blocks.h"
#include "hartley/transform.h"
#include "kernelgen/number.h"

namespace orvgen {

using Single = kernelgen::Number<kernelgen::Arithmetic::Single>;
using Double = kernelgen::Number<kernelgen::Arithmetic::Double>;

template class flows::Flow<Single>;
template class flows::Flow<Double>;

template std::vector<Single> hartley::transform(int, const std::vector<Single>&, kernelgen::Graph*);
template std::vector<Double> hartley::transform(int, const std::vector<Double>&, kernelgen::Graph*);

}  // namespace orvgen
