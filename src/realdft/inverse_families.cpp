// SPDX-License-Identifier: MIT
#include "families.h"
#include "inverse.h"
#include "plan/notation.h"

namespace orvgen::realdft {

using kernelgen::Arithmetic;
using kernelgen::Family;
using kernelgen::Kernel;

namespace {

Family inverseFamily(PackedFormat format, Arithmetic arithmetic) {
    Family family;
    family.name = std::string("orvgDFTInv_") + formatName(format) +
                  (arithmetic == Arithmetic::Single ? "ToR_32f" : "ToR_64f");
    for (int n = kShortest; n <= kLongest; ++n) family.lengths.push_back(n);
    family.kernel = [name = family.name, format, arithmetic](int n) {
        return Kernel{kernelgen::memberName(name, n),
                      n,
                      plan::notation(*inversePlans(format).plan(n)),
                      kernelgen::ScaleRule::InverseByN,
                      kernelgen::Alignment::Any,
                      false,
                      false,
                      inverseGraph(n, format, arithmetic)};
    };
    return family;
}

}  // namespace

std::vector<Family> inverseRealFamilies() {
    std::vector<Family> families;
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double})
        for (const PackedFormat format : kPackedFormats)
            families.push_back(inverseFamily(format, arithmetic));
    return families;
}

}  // namespace orvgen::realdft
