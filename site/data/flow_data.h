// SPDX-License-Identifier: MIT
// The value graph of a kernel for the page that draws it.
#pragma once

#include "kernelgen/kernel.h"
#include "script.h"

namespace orvgen::site {

// {stages: [name..], constants: [formula..], nodes: "..."}, empty where there is no graph to draw.
//
// A node is a letter and numbers, nodes are parted by semicolons:
//
//   I stage element             element of src
//   Z stage                     zero
//   + stage a b                 sum; likewise - for the difference
//   * stage constant a          product by a constant
//   s stage a                   product by the scale
//   W, N, X, L, H stage a       widened, rounded to binary32, lanes exchanged, sign of the low or
//                               of the high lane turned
//   P stage l l l l             four lanes, l = 4 node + lane
//   O stage element a           element of dst
//   Q stage element l l         element of dst from two lanes
//
// a and b are numbers of nodes, in the order in which they stand.
Json flowOf(const kernelgen::Kernel& kernel);

// The largest constant of the flow in magnitude, scale and doublings apart; 0 where there is none.
double largestConstant(const kernelgen::Kernel& kernel);

}  // namespace orvgen::site
