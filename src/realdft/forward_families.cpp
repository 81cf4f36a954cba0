// SPDX-License-Identifier: MIT
#include "families.h"
#include "forward.h"
#include "plan/notation.h"

namespace orvgen::realdft {

namespace {

kernelgen::Kernel kernel(const FamilyInfo& family, int n) {
    const PackedFormat format = family.dst;
    const auto arithmetic =
        family.isSingle() ? kernelgen::Arithmetic::Single : kernelgen::Arithmetic::Double;
    return kernelOf(family, n, plan::notation(*forwardPlans().plan(n)),
                    forwardGraph(n, format, arithmetic));
}

}  // namespace

std::vector<KernelFamily> forwardRealFamilies() {
    std::vector<KernelFamily> families;
    for (const FamilyInfo& f : kFamilies)
        if (f.transform == Transform::Dft && !f.isComplex() && f.direction == Direction::Forward)
            families.push_back({&f, [&f](int n) { return kernel(f, n); }});
    return families;
}

}  // namespace orvgen::realdft
