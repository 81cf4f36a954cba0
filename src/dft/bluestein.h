// SPDX-License-Identifier: MIT
// Bluestein's algorithm, for the kernels of the lengths 47 and 59, whose p - 1 is twice a large
// prime.
//
// n k = (n^2 + k^2 - (n - k)^2) / 2 makes the transform a convolution with a chirp, done by
// transforms of length M >= 2 p - 1 (96 and 128):
//   w[n] = exp(-+ i pi n^2 / p)
//   Y = transform of x[n] w[n], padded with zeros; sums over zeros are left out
//   H[k] = (1/M) sum over |n| < p of exp(+- i pi n^2 / p) exp(-2 pi i k n / M)
//   z = inverse transform of Y H, for n < p only, and X[n] = z[n] w[n].
#pragma once

#include "plan/plan.h"
#include "roots.h"

namespace orvgen::dft {

ComplexConstant chirp(Direction direction, std::size_t p, std::size_t n);
ComplexConstants chirpSpectrum(Direction direction, std::size_t p, std::size_t M);

// x has p + 1 elements: whole vectors are read, the last number is multiplied by zero. Leaves
// values behind that no output depends on.
Points bluestein(Lanes& lanes, const plan::Bluestein& plan, Direction direction, const Points& x);

}  // namespace orvgen::dft
