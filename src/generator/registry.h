// SPDX-License-Identifier: MIT
// All families of kernels that the kernel compiler makes.
#pragma once

#include <vector>

#include "frame/kernel_family.h"

namespace orvgen::generator {

std::vector<KernelFamily> allFamilies();

}  // namespace orvgen::generator
