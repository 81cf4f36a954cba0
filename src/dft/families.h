// SPDX-License-Identifier: MIT
// The families of complex kernels, for the kernel compiler and the tests.
#pragma once

#include <vector>

#include "kernelgen/kernel.h"

namespace orvgen::dft {

// Binary32: orvgDFTFwd_CToC_32fc and orvgDFTInv_CToC_32fc.
std::vector<kernelgen::Family> complexSingleFamilies();
// Binary64: orvgDFTFwd_CToC_64fc and orvgDFTInv_CToC_64fc.
std::vector<kernelgen::Family> complexDoubleFamilies();

}  // namespace orvgen::dft
