// SPDX-License-Identifier: MIT
#include "support/library_file.h"

#include <cstdlib>
#include <string_view>

namespace orvgen::test {

std::string libraryFile() {
    const char* told = std::getenv("ORVGEN_TEST_LIBRARY");
    return told ? told : ORVGEN_LIBRARY_FILE;
}

bool isSecondBuild() {
    const char* told = std::getenv("ORVGEN_TEST_LEVEL");
    return told && std::string_view(told) == "x86-64-v3";
}

// Of the level what compilers know by name; no processor has these and lacks the others.
bool processorRunsIt() {
    return !isSecondBuild() || (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                                __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma"));
}

}  // namespace orvgen::test
