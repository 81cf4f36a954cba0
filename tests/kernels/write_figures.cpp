// SPDX-License-Identifier: MIT
// Prints tests/data/kernel_figures.csv for the kernels as they are written now.
#include <iostream>

#include "figures.h"

int main() {
    std::cout
        << "# What the kernel compiler makes of every kernel: instructions, spills, bytes of the frame and\n"
           "# cycles by its models. None may become greater. Written by: ./dev figures\n"
           "name,instructions,spills,frame,cycles\n";
    for (const std::string& kernel : orvgen::test::kernelsWithFigures()) {
        const orvgen::test::KernelFigures f = orvgen::test::figuresOf(kernel);
        std::cout << kernel << ',' << f.instructions << ',' << f.spills << ',' << f.frame << ','
                  << f.cycles << '\n';
    }
    return 0;
}
