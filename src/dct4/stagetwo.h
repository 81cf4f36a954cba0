// SPDX-License-Identifier: MIT
// The loop around the kernels of the second stage: blocks of the scratch in, results of the
// transform out.
#pragma once

#include "dct4/records.h"
#include "orvgen.h"

namespace orvgen::dct4 {

// Runs the kernel of the node's rule 1 to 6, r = 1 to 32; any other rule gives orvErrPlan.
template <class Real>
OrvStatus stageTwoKernel(const Env4<Real>& node, Real* dst, const Real* src);

}  // namespace orvgen::dct4
