// SPDX-License-Identifier: MIT
// How any part of a program says that its arguments, or what they name, are wrong.

#ifndef ORVGEN_TOOLS_BAD_INPUT_H
#define ORVGEN_TOOLS_BAD_INPUT_H

#include <stdexcept>

// What is wrong, in one line for the user; runProgram (program.h) ends with status 2.
class BadInput : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

#endif
