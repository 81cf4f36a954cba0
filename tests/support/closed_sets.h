// SPDX-License-Identifier: MIT
// Closed sets: the equal sets of samples that meet first in a flow, and of outputs that part last.
//
// An input set of size d: the d samples of the set, and no others, are what some value of the flow
// is made of. An output set of size d: some value of the flow goes into the d outputs of the set,
// and into no others. A size counts if such sets divide all elements into equal parts.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "kernelgen/graph.h"

namespace orvgen::test {

using ElementSet = std::uint64_t;  // one bit an element
ElementSet elementSet(const std::vector<int>& elements);

// The sets of samples that the values of a flow are made of, and of outputs that they go into.
std::set<ElementSet> inputSets(const kernelgen::Graph& graph);
std::set<ElementSet> outputSets(const kernelgen::Graph& graph);

// Sizes d, 1 < d < number of elements, ascending. For a prime length the flow treats element 0 by
// itself: then sets of the other elements are asked for, and `first` is 1.
std::vector<long> closedInputSets(const kernelgen::Graph& graph, int first, int length);
std::vector<long> closedOutputSets(const kernelgen::Graph& graph, int first, int length);

// The first element that sets are made of: 1 for a prime length, else 0.
int firstOfSets(int length);

// The sets of size d where a length is divided evenly: the elements at the stride length/d; for a
// prime length the cosets of the subgroup of order d of its indices under multiplication.
std::vector<ElementSet> evenSets(int d, int length);

}  // namespace orvgen::test
