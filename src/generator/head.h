// SPDX-License-Identifier: MIT
// What the kernel compiler says of a kernel in the comment at the head of its assembly: for those
// who read the files of a build and do not want to compile every kernel once more.
#pragma once

#include <string>

#include "kernelgen/compile.h"

namespace orvgen::generator {

// The assembly of a kernel in the folder that the build writes. Throws where there is none.
std::string assemblyOf(const std::string& folder, const std::string& kernel);

// Throws if the text has no such head.
kernelgen::KernelFigures figuresInHead(const std::string& assembly);

}  // namespace orvgen::generator
