// SPDX-License-Identifier: MIT
// The families of Hartley kernels, for the kernel compiler and the tests.
#pragma once

#include <vector>

#include "kernelgen/kernel.h"

namespace orvgen::hartley {

// orvgHartley in binary32 and in binary64.
std::vector<kernelgen::Family> hartleyFamilies();

}  // namespace orvgen::hartley
