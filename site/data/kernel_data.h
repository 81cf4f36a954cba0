// SPDX-License-Identifier: MIT
// What the explorer knows of a kernel.
#pragma once

#include <string>
#include <vector>

#include "frame/families.h"
#include "generator/operations.h"
#include "kernelgen/kernel.h"
#include "known_counts.h"
#include "script.h"

namespace orvgen::site {

Kind kindOf(const FamilyInfo& family);

// What a kernel has of what was counted. The scale is left out, a sign is free, and a doubling is
// an addition of the value to itself.
int comparable(const generator::Operations& operations, Counted counted);
bool conditionHolds(const KnownCount& known, const kernelgen::Kernel& kernel);

// A row of the list of kernels: name, number of the family, length or order, points, plan,
// additions, multiplications, conversions, instructions, spills, bytes of the frame, cycles by the
// model, port bound, error bound.
Json rowOf(const kernelgen::Kernel& kernel, int family, int length, const std::string& assembly);

// All the rest: plan, counts beside known ones, rows of the count tables (in the folder `tables`),
// flow, assembly.
Json pageOf(const kernelgen::Kernel& kernel, const FamilyInfo& family, int length,
            const std::string& tables, const std::string& assembly);

// Assembly repeats itself; short marks stand for what is frequent. The list of (mark, text) is to
// be undone from its end, and & is the stem of the kernel's name.
struct Mark {
    const char* mark;
    const char* text;
};
const std::vector<Mark>& marks();
std::string marked(std::string assembly, const kernelgen::KernelName& name);

}  // namespace orvgen::site
