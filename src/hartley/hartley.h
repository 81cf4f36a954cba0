// SPDX-License-Identifier: MIT
// The discrete Hartley transform of N real samples, N = 2..64:
//
//   H[k] = sum of x[n] (cos(2 pi nk/N) + sin(2 pi nk/N)), k = 0..N-1.
//
// It is a real Fourier transform in either direction. Of the forward one it takes the two sums of a
// bin X[k] = C - i S, H[k] = C + S and H[N-k] = C - S: one sum more for each output. Of the inverse
// one it feeds the bins Z[k] = (x[k] + x[N-k], x[N-k] - x[k]), since
//
//   H[n] = x[0] + sum over 0<k<N/2 of ((x[k] + x[N-k]) cos + (x[k] - x[N-k]) sin) + (-1)^n x[N/2]:
//
// sums in the place of the doublings. Some lengths take the one way, the others the other.
#pragma once

#include <string>
#include <vector>

#include "kernelgen/graph.h"
#include "kernelgen/value.h"
#include "plan/plan.h"

namespace orvgen::hartley {

// Whether a length runs the flow of the forward real transform, with another last layer.
bool runsForwardFlow(int n);
// Lengths whose last layer is written out.
bool hasOwnLastLayer(int n);

// The plan of the real transform that a length runs.
plan::PlanPtr planOf(int n);
// The same in one line, and which transform it is.
std::string notation(int n);

// Not scaled yet; no value carries a minus, and all are binary32 where the samples are.
template <class V>
std::vector<V> transform(int n, const std::vector<V>& x, kernelgen::Graph* graph = nullptr);
extern template std::vector<kernelgen::Value> transform(int n,
                                                        const std::vector<kernelgen::Value>& x,
                                                        kernelgen::Graph* graph);

kernelgen::Graph hartleyGraph(int n, kernelgen::Arithmetic arithmetic);

}  // namespace orvgen::hartley
