// SPDX-License-Identifier: MIT
// The Walsh-Hadamard kernels as families of the kernel compiler.
#pragma once

#include <vector>

#include "kernelgen/kernel.h"

namespace orvgen::wht {

std::vector<kernelgen::Family> walshHadamardFamilies();

}  // namespace orvgen::wht
