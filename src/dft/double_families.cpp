// SPDX-License-Identifier: MIT
// The complex binary64 kernels.
#include "double_flow.h"
#include "double_plans.h"
#include "families.h"
#include "plan/notation.h"

namespace orvgen::dft {

using flows::Direction;

namespace {

kernelgen::Kernel kernel(const FamilyInfo& family, int n) {
    const Direction direction =
        family.direction == orvgen::Direction::Forward ? Direction::Forward : Direction::Inverse;
    return kernelOf(family, n, plan::notation(*doublePlans().plan(n)), doubleFlow(direction, n));
}

}  // namespace

std::vector<KernelFamily> complexDoubleFamilies() {
    std::vector<KernelFamily> families;
    for (const FamilyInfo& f : kFamilies)
        if (f.isComplex() && !f.isSingle())
            families.push_back({&f, [&f](int n) { return kernel(f, n); }});
    return families;
}

}  // namespace orvgen::dft
