// SPDX-License-Identifier: MIT
// From a kernel to its assembly.
#pragma once

#include <string>

#include "function.h"

namespace orvgen::kernelgen {

struct KernelFigures {
    int instructions = 0;  // of the blocks, as assembled for aligned buffers
    int frameBytes = 0;
    int spills = 0;
    double modelCycles = 0;  // of the whole transform
    double portBound = 0;
};

struct CompiledKernel {
    std::string assembly;  // a whole source file: functions, pool
    KernelFigures figures;
};
CompiledKernel compileKernel(const Kernel& kernel, const Target& target = kSse2);

// The stored scale for a flag's kind, as part of every kernel's pool.
double storedScale(ScaleKind kind, int length, bool single);

}  // namespace orvgen::kernelgen
