// SPDX-License-Identifier: MIT
#include "registry.h"

#include "dft/families.h"
#include "hartley/families.h"
#include "realdft/families.h"
#include "wht/families.h"

namespace orvgen::generator {

using kernelgen::Family;

std::vector<Family> allFamilies() {
    std::vector<Family> all;
    const auto append = [&all](const std::vector<Family>& families) {
        all.insert(all.end(), families.begin(), families.end());
    };
    append(dft::complexSingleFamilies());
    append(dft::complexDoubleFamilies());
    append(realdft::forwardRealFamilies());
    append(realdft::inverseRealFamilies());
    append(hartley::hartleyFamilies());
    append(wht::walshHadamardFamilies());
    return all;
}

}  // namespace orvgen::generator
