// SPDX-License-Identifier: MIT
// The kernel compiler with the test's own flows.
#include "generator/command.h"
#include "small_flows.h"

int main(int argc, char** argv) {
    return orvgen::generator::runCommand(argc, argv, orvgen::test::smallFamilies());
}
