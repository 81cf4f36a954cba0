// SPDX-License-Identifier: MIT
// What the functions of a kernel are called: a prefix, orvg for what the library exports and owng
// for what it keeps to itself, and the stem that is the kernel's own.
#pragma once

#include <string>

namespace orvgen::kernelgen {

struct KernelName {
    std::string stem;  // DFTFwd_CToC_16_32fc

    // orvgDFTFwd_CToC_16_32fc
    std::string exported() const { return "orvg" + stem; }
    // The body for data of any alignment: owngDFTFwd_CToC_16_32fc_unaligned
    std::string twin() const { return "owng" + stem + "_unaligned"; }
    // For batches, of a form on a target: owngRowsDFTFwd_CToC_16_32fc_avx2
    std::string ofBatch(const std::string& form, const std::string& target) const {
        return "owng" + form + stem + "_" + target;
    }
};

}  // namespace orvgen::kernelgen
