// SPDX-License-Identifier: MIT
// The families of real kernels, for the kernel compiler and the tests.
#pragma once

#include <vector>

#include "frame/kernel_family.h"

namespace orvgen::realdft {

// orvgDFTFwd_RToCCS, RToPack and RToPerm, each in binary32 and in binary64.
std::vector<KernelFamily> forwardRealFamilies();

// orvgDFTInv_CCSToR, PackToR and PermToR, each in binary32 and in binary64.
std::vector<KernelFamily> inverseRealFamilies();

}  // namespace orvgen::realdft
