// SPDX-License-Identifier: MIT
// Proof of a flow: a linear flow is right for all inputs if it is right on every unit vector. The
// flow is run there in multiple precision and laid beside the transform's own matrix.
#pragma once

#include <functional>
#include <vector>

#include "kernelgen/evaluate.h"
#include "kernelgen/real.h"

namespace orvgen::test {

using kernelgen::Real;

// The coefficient with which element `input` of src enters element `output` of dst, scale 1.
using Matrix = std::function<Real(int output, int input)>;

// The largest difference between flow and matrix over all coefficients. A flow that reads an
// element from `inputs` on, or that does not write exactly the elements 0 to outputs - 1, throws.
Real proofError(const kernelgen::Graph& graph, int inputs, int outputs, const Matrix& matrix);

// What is left of multiple precision after the deepest flow: an error below this is rounding of
// the proof itself, an error above it a wrong constant or a wrong sign.
inline const Real kProofTolerance("1e-60");

// Elements of src that the flow reads, ascending.
std::vector<int> elementsRead(const kernelgen::Graph& graph);
// Elements of dst that the flow writes, ascending.
std::vector<int> elementsWritten(const kernelgen::Graph& graph);

// The transforms on real data, natural order; `half` is (bin, imaginary part or not).
struct Term {
    int bin = 0;
    bool imaginary = false;
    auto operator<=>(const Term&) const = default;
};
// R[k] = sum of x[n] cos(2 pi nk/N), I[k] = -sum of x[n] sin(2 pi nk/N).
Real forwardCoefficient(int length, const Term& term, int sample);
// y[n] = R[0] + 2 sum of (R[k] cos(2 pi nk/N) - I[k] sin(2 pi nk/N)) + (-1)^n R[N/2].
Real inverseCoefficient(int length, int sample, const Term& term);
// H[k] = sum of x[n] (cos(2 pi nk/N) + sin(2 pi nk/N)).
Real hartleyCoefficient(int length, int bin, int sample);

}  // namespace orvgen::test
