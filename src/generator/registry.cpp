// SPDX-License-Identifier: MIT
#include "registry.h"

#include "dft/families.h"
#include "hartley/families.h"
#include "realdft/families.h"
#include "wht/families.h"

namespace orvgen::generator {

std::vector<KernelFamily> allFamilies() {
    std::vector<KernelFamily> all;
    const auto append = [&all](const std::vector<KernelFamily>& families) {
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
