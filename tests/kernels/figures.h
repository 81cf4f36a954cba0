// SPDX-License-Identifier: MIT
// What the kernel compiler says of the kernels that it wrote, in the comments at their heads.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace orvgen::test {

// Of the body for aligned buffers; of a kernel of several passes those of each together.
struct KernelFigures {
    int instructions = 0;
    int spills = 0;
    int frame = 0;      // bytes
    double cycles = 0;  // by the compiler's models of cores
};

// In the order of the families.
std::vector<std::string> kernelsWithFigures();
KernelFigures figuresOf(const std::string& kernel);

}  // namespace orvgen::test
