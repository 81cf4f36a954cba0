// SPDX-License-Identifier: MIT
// The build of the product that a test is about. Tests that run with both are told which by two
// variables of the environment (cmake/OrvgenTest.cmake): the file, and the level of processors that
// it is for. Without them it is the first build.
#pragma once

#include <string>

namespace orvgen::test {

std::string libraryFile();
// Whether it is the one for x86-64-v3.
bool isSecondBuild();
// Whether this processor has the instructions of that build.
bool processorRunsIt();

}  // namespace orvgen::test
