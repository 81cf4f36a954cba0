// SPDX-License-Identifier: MIT
// Rader's algorithm inside composite lengths: the prime factors 13, 17, 19, 23, 29 and 31.
//
// A cyclic convolution of length L = p - 1 with the powers of the primitive root g. Cosines repeat
// with period L/2 along the cycle and sines change their sign there, so the cosine part of the
// transform has only even and the sine part only odd frequencies of the cycle. Both parts are
// sums with real coefficients: the forward transform of the cycle runs on the real parts and on
// the imaginary parts alike (the real-lane form), with real constants.
//
//   a[q] = z[g^-q], A = real transform of a, X[0] = z[0] + A[0]
//   D[0] = z[0] + K[0] A[0], D[k] = K[k] A[k], D[L/2] = K[L/2] A[L/2]
//   even frequencies of D give P, odd ones Q, and X[g^(r+u)] = P[r] + i Q[r] (inverse: P - i Q).
//
// Where the cycle's inverse transform is split (cycles.h: at 13 and 17), P and Q come back apart
// and are joined behind it; at the others before it, where i Q joins the real with the imaginary
// parts.
#pragma once

#include "lanes.h"
#include "plan/plan.h"

namespace orvgen::dft {

// One p-point transform in each lane.
Vectors laneRader(const plan::LaneRader& plan, Direction direction, const Vectors& z);

}  // namespace orvgen::dft
