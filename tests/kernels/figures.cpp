// SPDX-License-Identifier: MIT
#include "figures.h"

#include <fstream>
#include <sstream>

#include "generator/head.h"
#include "generator/registry.h"

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
    for (const kernelgen::Family& f : generator::allFamilies()) {
        for (const int n : f.lengths) names.push_back(kernelgen::memberName(f.name, n));
    }
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
