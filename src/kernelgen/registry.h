// All families of kernels that the kernel compiler makes.
#pragma once

#include <vector>

#include "kernel.h"

namespace orvgen::kernelgen {

std::vector<Family> allFamilies();

}  // namespace orvgen::kernelgen
