// SPDX-License-Identifier: MIT
// The families of Hartley kernels, for the kernel compiler and the tests.
#pragma once

#include <vector>

#include "frame/kernel_family.h"

namespace orvgen::hartley {

// orvgHartley in binary32 and in binary64.
std::vector<KernelFamily> hartleyFamilies();

}  // namespace orvgen::hartley
