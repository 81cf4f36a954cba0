// SPDX-License-Identifier: MIT
#include "figures.h"

#include <fstream>
#include <sstream>

#include "frame/names.h"
#include "generator/head.h"

namespace orvgen::test {
namespace {

std::string contentOf(const std::string& kernel) {
    std::ifstream file(ORVGEN_KERNEL_DIR "/" + kernel + ".s");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace

std::vector<std::string> kernelsWithFigures() {
    std::vector<std::string> names;
    for (const Member& m : allKernels()) names.push_back(m.name());
    return names;
}

KernelFigures figuresOf(const std::string& kernel) {
    const kernelgen::KernelFigures f = generator::figuresInHead(contentOf(kernel));
    return {.instructions = f.instructions,
            .spills = f.spills,
            .frame = f.frameBytes,
            .cycles = f.modelCycles};
}

}  // namespace orvgen::test
