// SPDX-License-Identifier: MIT
#include "families.h"

#include "hartley.h"

namespace orvgen::hartley {

std::vector<KernelFamily> hartleyFamilies() {
    std::vector<KernelFamily> families;
    for (const FamilyInfo& f : kFamilies) {
        if (f.transform != Transform::Hartley) continue;
        const auto arithmetic =
            f.isSingle() ? kernelgen::Arithmetic::Single : kernelgen::Arithmetic::Double;
        families.push_back({&f, [&f, arithmetic](int n) {
                                return kernelOf(f, n, notation(n), hartleyGraph(n, arithmetic));
                            }});
    }
    return families;
}

}  // namespace orvgen::hartley
