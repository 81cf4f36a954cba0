// SPDX-License-Identifier: MIT
// The page of a kernel: how it is computed, what it costs, its assembly.
#pragma once

#include <iosfwd>
#include <string>

#include "frame/kernel_family.h"

namespace orvgen::generator {

// `tables`: the folder of the count tables; empty for none. Every family has the same lines; counts
// are of real operations, the scale included.
void printPage(std::ostream& out, const KernelFamily& family, int number,
               const std::string& tables);

// Of a member that runs by a plan: the nodes of the plan, and where each stands.
void printPlanPage(std::ostream& out, const Member& member);

}  // namespace orvgen::generator
