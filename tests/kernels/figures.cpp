// SPDX-License-Identifier: MIT
#include "figures.h"

#include "frame/names.h"
#include "generator/head.h"

namespace orvgen::test {

std::vector<std::string> kernelsWithFigures() {
    std::vector<std::string> names;
    for (const Member& m : allKernels()) names.push_back(m.name());
    return names;
}

KernelFigures figuresOf(const std::string& kernel) {
    const kernelgen::KernelFigures f =
        generator::figuresInHead(generator::assemblyOf(ORVGEN_KERNEL_DIR, kernel));
    return {.instructions = f.instructions,
            .spills = f.spills,
            .frame = f.frameBytes,
            .cycles = f.modelCycles};
}

}  // namespace orvgen::test
