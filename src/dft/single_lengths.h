// SPDX-License-Identifier: MIT
// What is known of each length of the complex binary32 kernels: all in one table.
#pragma once

#include "plan/plan.h"

namespace orvgen::dft {

struct SingleLength {
    plan::PlanPtr plan;
    bool halvesOnly;     // src and dst are touched by 8-byte halves only
    bool registersOnly;  // the sixteen registers hold all values
};

SingleLength singleLength(int length);

}  // namespace orvgen::dft
