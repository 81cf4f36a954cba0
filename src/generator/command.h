// SPDX-License-Identifier: MIT
// The command line of a program that holds families of kernels.
#pragma once

#include <vector>

#include "kernelgen/kernel.h"

namespace orvgen::generator {

// emit NAME FILE [TARGET]
//                     writes the assembly of one kernel: for every processor, or for the level
//                     x86-64-v3
// batch NAME FOLDER TARGET...
//                     writes that of many transforms at once, for each of the targets (avx2,
//                     avx512)
// show NAME [FOLDER]  prints what there is to say about it, beside the rows of the tables in
//                     FOLDER, and its assembly
// list                prints the names of all kernels
// plans               prints a page in Markdown: how every length is computed
// Returns the exit status: 0, or 2 with one line on standard error.
int runCommand(int argc, char** argv, const std::vector<kernelgen::Family>& families);

}  // namespace orvgen::generator
