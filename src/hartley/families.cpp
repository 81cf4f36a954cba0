// SPDX-License-Identifier: MIT
#include "families.h"

#include "hartley.h"
#include "realdft/packed_format.h"

namespace orvgen::hartley {

using kernelgen::Arithmetic;
using kernelgen::Family;
using kernelgen::Kernel;

std::vector<Family> hartleyFamilies() {
    std::vector<Family> families;
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double}) {
        Family family;
        family.name = arithmetic == Arithmetic::Single ? "orvgHartley_32f" : "orvgHartley_64f";
        for (int n = realdft::kShortest; n <= realdft::kLongest; ++n) family.lengths.push_back(n);
        family.kernel = [name = family.name, arithmetic](int n) {
            return Kernel{
                kernelgen::memberName(name, n), n,     notation(n), kernelgen::ScaleRule::BothByN,
                kernelgen::Alignment::Any,      false, false,       hartleyGraph(n, arithmetic)};
        };
        families.push_back(family);
    }
    return families;
}

}  // namespace orvgen::hartley
