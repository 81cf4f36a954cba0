// SPDX-License-Identifier: MIT
// Rader's algorithm for the kernels of the prime lengths 7 to 61, but for 47 and 59.
//
// With the smallest primitive root g of p, a cyclic convolution of length L = p - 1:
//   a[q] = x[g^-q], A = transform of a
//   X[0] = x[0] + A[0]
//   C[k] = A[k] B[k], and C[0] = x[0] + A[0] B[0], which carries x[0] to all other outputs
//   X[g^r] = inverse transform of C, by the same stages backwards
//   B[k] = (1/L) sum over r of exp(-+ 2 pi i g^r / p) exp(-2 pi i k r / L).
#pragma once

#include "plan/plan.h"
#include "roots.h"

namespace orvgen::dft {

ComplexConstants raderConstants(Direction direction, std::size_t p);

Points rader(Lanes& lanes, const plan::ComplexRader& plan, Direction direction, const Points& x);

}  // namespace orvgen::dft
