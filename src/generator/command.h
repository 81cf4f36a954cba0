// SPDX-License-Identifier: MIT
// The command line of a program that holds families of kernels.
#pragma once

#include <vector>

#include "frame/kernel_family.h"

namespace orvgen::generator {

// emit NAME FILE [TARGET]
//     writes the assembly of one kernel, for every processor or for the target avx2
// batch NAME FOLDER TARGET...
// pairs NAME FOLDER TARGET...
// rows NAME FOLDER TARGET...
//     writes that of many transforms at once, for each of the targets (avx2, avx512)
// show FOLDER NAME...
//     prints what there is to say about each kernel that is called so (names.h), beside the rows of
//     the tables in FOLDER, and its assembly; of a DCT-IV (DCT4_1024_32f) the nodes of its plan
// list
//     prints the names of all kernels
// plans
//     prints a page in Markdown: how every length is computed
// Returns the exit status: 0; 2 for a name or a command that there is not, 1 for anything else that
// fails, with a line on standard error.
int runCommand(int argc, char** argv, const std::vector<KernelFamily>& families);

}  // namespace orvgen::generator
