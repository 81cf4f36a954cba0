// SPDX-License-Identifier: MIT
// The Walsh-Hadamard kernels as families of the kernel compiler.
#pragma once

#include <vector>

#include "frame/kernel_family.h"

namespace orvgen::wht {

std::vector<KernelFamily> walshHadamardFamilies();

}  // namespace orvgen::wht
