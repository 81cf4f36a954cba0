// SPDX-License-Identifier: MIT
#include "families.h"
#include "inverse.h"
#include "plan/notation.h"

namespace orvgen::realdft {

namespace {

kernelgen::Kernel kernel(const FamilyInfo& family, int n) {
    const PackedFormat format = family.src;
    const auto arithmetic =
        family.isSingle() ? kernelgen::Arithmetic::Single : kernelgen::Arithmetic::Double;
    return kernelOf(family, n, plan::notation(*inversePlans(format).plan(n)),
                    inverseGraph(n, format, arithmetic));
}

}  // namespace

std::vector<KernelFamily> inverseRealFamilies() {
    std::vector<KernelFamily> families;
    for (const FamilyInfo& f : kFamilies)
        if (f.transform == Transform::Dft && !f.isComplex() && f.direction == Direction::Inverse)
            families.push_back({&f, [&f](int n) { return kernel(f, n); }});
    return families;
}

}  // namespace orvgen::realdft
