// SPDX-License-Identifier: MIT
// kernelgen: the kernel compiler as a program. See command.h.
#include "command.h"
#include "registry.h"

int main(int argc, char** argv) {
    using namespace orvgen::generator;
    return runCommand(argc, argv, allFamilies());
}
