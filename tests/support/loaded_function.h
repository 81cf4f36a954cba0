// SPDX-License-Identifier: MIT
// Functions of the product that this program runs with, by name, whether exported or not: twins
// stand in the table of symbols of the file in the build tree.
#pragma once

#include <string>

namespace orvgen::test {

// Any function, for those who make calls of their own.
using PlainFunction = void (*)();

// Throws where there is none of that name, or the program runs with no shared library.
PlainFunction loadedFunction(const std::string& name);

}  // namespace orvgen::test
