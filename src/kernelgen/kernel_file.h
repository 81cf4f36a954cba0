// SPDX-License-Identifier: MIT
// The file of one kernel in the build tree, written only when there is something new to write.
//
// The build asks for every kernel again whenever a source of the program has changed, and most
// changes leave most kernels as they are. Two stops keep such a build short: a kernel that is made
// of the same flow by the same compiler is not compiled again, and a file whose bytes would be the
// same is not touched, so that nobody assembles it.
#pragma once

#include <functional>
#include <string>

#include "kernel.h"

namespace orvgen::kernelgen {

// Everything that the assembly of a kernel is made of, the sources of the compiler included, as one
// short word.
std::string keyOf(const Kernel& kernel);

// Writes what `text` returns to the file, unless the file holds it already; does not even ask for
// it where FILE.key says that the file was made by this key. Throws if the file cannot be written.
void writeKernelFile(const std::string& file, const std::string& key,
                     const std::function<std::string()>& text);

}  // namespace orvgen::kernelgen
