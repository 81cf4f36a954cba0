// SPDX-License-Identifier: MIT
#include "families.h"
#include "forward.h"
#include "plan/notation.h"

namespace orvgen::realdft {

using kernelgen::Arithmetic;
using kernelgen::Family;
using kernelgen::Kernel;

namespace {

Family forwardFamily(PackedFormat format, Arithmetic arithmetic) {
    Family family;
    family.name = std::string("orvgDFTFwd_RTo") + formatName(format) +
                  (arithmetic == Arithmetic::Single ? "_32f" : "_64f");
    for (int n = kShortest; n <= kLongest; ++n) family.lengths.push_back(n);
    family.kernel = [name = family.name, format, arithmetic](int n) {
        return Kernel{kernelgen::memberName(name, n),
                      n,
                      plan::notation(*forwardPlans().plan(n)),
                      kernelgen::ScaleRule::ForwardByN,
                      kernelgen::Alignment::Any,
                      false,
                      false,
                      forwardGraph(n, format, arithmetic)};
    };
    return family;
}

}  // namespace

std::vector<Family> forwardRealFamilies() {
    std::vector<Family> families;
    for (const Arithmetic arithmetic : {Arithmetic::Single, Arithmetic::Double})
        for (const PackedFormat format : kPackedFormats)
            families.push_back(forwardFamily(format, arithmetic));
    return families;
}

}  // namespace orvgen::realdft
