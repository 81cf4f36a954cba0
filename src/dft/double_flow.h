// SPDX-License-Identifier: MIT
// The complex binary64 transforms: the forward real transform of the same length, run on vectors of
// one complex element each.
//
// Write y[k] = P[k] + i Q[k] with P the cosine sums and Q minus the sine sums. P and Q have real
// coefficients, so that the real transform does both parts of an element at once, one in each lane,
// with no value crossing between lanes. Only the finish crosses: T = i Q is a lane swap and the
// sign of one lane, and y[k] = P + T, y[N-k] = P - T. The inverse takes T = -i Q, which is the same
// swap and the sign of the other lane.
//
// A direct block begins each of its sums with a term that is positive in the kernel's own
// direction. In blocks of 11, and in smaller ones whose operands carry signs, that is another term
// in the inverse than in the forward kernel, so that the last bits may differ there; elsewhere
// inverse(x) = swap(forward(swap(x))) and inverse(x)[k] = forward(x)[N-k] hold bit for bit.
#pragma once

#include "flows/direction.h"
#include "kernelgen/value.h"

namespace orvgen::dft {

// The product of a complex element in one vector by i and by -i: re + i im is held as (re, im).
inline kernelgen::Value timesI(const kernelgen::Value& q) {
    kernelgen::Graph& g = q.graph();
    return {g, g.flip(g.swap(q.id()), false), q.negative()};
}
inline kernelgen::Value timesMinusI(const kernelgen::Value& q) {
    kernelgen::Graph& g = q.graph();
    return {g, g.flip(g.swap(q.id()), true), q.negative()};
}

kernelgen::Graph doubleFlow(flows::Direction direction, int n);

}  // namespace orvgen::dft
