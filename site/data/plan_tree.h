// SPDX-License-Identifier: MIT
// The plan of a kernel as a tree in words.
#pragma once

#include <string>
#include <vector>

#include "frame/families.h"
#include "kernelgen/kernel.h"
#include "plan/plan.h"

namespace orvgen::site {

struct Branch {
    std::string role;  // in the node above: "first, 3 times"; empty at the root
    std::string what;  // "Good-Thomas join of 15 points, no twiddles"
    std::string plan;  // in the notation of docs/plans.md
    std::vector<Branch> parts = {};
};

// The plan of a member of a family, and none for Walsh-Hadamard kernels.
plan::PlanPtr planOf(const FamilyInfo& family, int length);

Branch branchOf(const plan::Plan& plan);
// Of a member of a family: its plan, in the way in which the family runs plans; of a Walsh-Hadamard
// kernel its passes.
Branch branchOf(const kernelgen::Kernel& kernel, const FamilyInfo& family, int length);

}  // namespace orvgen::site
