// SPDX-License-Identifier: MIT
// All families of kernels that the kernel compiler makes.
#pragma once

#include <vector>

#include "kernelgen/kernel.h"

namespace orvgen::generator {

std::vector<kernelgen::Family> allFamilies();

}  // namespace orvgen::generator
