// SPDX-License-Identifier: MIT
// The families of complex kernels, for the kernel compiler and the tests.
#pragma once

#include <vector>

#include "frame/kernel_family.h"

namespace orvgen::dft {

// Binary32: orvgDFTFwd_CToC_32fc and orvgDFTInv_CToC_32fc.
std::vector<KernelFamily> complexSingleFamilies();
// Binary64: orvgDFTFwd_CToC_64fc and orvgDFTInv_CToC_64fc.
std::vector<KernelFamily> complexDoubleFamilies();

}  // namespace orvgen::dft
