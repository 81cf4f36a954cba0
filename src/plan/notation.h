// SPDX-License-Identifier: MIT
// Plans in one line, whole: 45 is "(5, 3) T 3", 13 "Rader 13(3, 4; 2, 3; 2 T{conjugate rows} 3)".
//
// A comma is a Good-Thomas join and T a Cooley-Tukey join, the factor that runs first in front.
// Parentheses hold the parts of a node, brackets a factor whose blocks differ, braces what a node
// chooses. All of it is explained at the head of docs/plans.md.
#pragma once

#include <string>

#include "plan.h"

namespace orvgen::plan {

std::string notation(const Plan& plan);

}  // namespace orvgen::plan
