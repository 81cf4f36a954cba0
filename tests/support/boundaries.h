// SPDX-License-Identifier: MIT
// Cache lines: where functions and their pools begin.
#pragma once

#include <string>
#include <vector>

#include "support/machine_code.h"

namespace orvgen::test {

inline constexpr std::uint64_t kCacheLine = 64;

// What of this function does not begin on a cache line: itself, or what it takes the address of by
// `lea`, its pool of constants (which it may point into at a multiple of 64 bytes). A function that
// takes no address is reported as well.
std::vector<std::string> offTheirBoundary(const MachineCode& code, const std::string& function);

}  // namespace orvgen::test
