// SPDX-License-Identifier: MIT
// What the main functions of the programs share: arguments by CLI11, failures in one line that
// begins with the program's name, exit statuses.

#ifndef ORVGEN_TOOLS_PROGRAM_H
#define ORVGEN_TOOLS_PROGRAM_H

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "bad_input.h"

// A number between the limits; CLI::Range would let a NaN pass.
CLI::Validator within(double least, double most);
// The same for whole numbers.
CLI::Validator wholeWithin(std::int64_t least, std::int64_t most);
// One of these words.
CLI::Validator oneOf(const std::vector<std::string>& words);

// Makes the folder that results go to, before there are any. Throws BadInput where it cannot be
// one.
void makeFolder(const std::filesystem::path& folder);

// Declares and reads the arguments and runs the body. The exit status: the body's; 0 after --help;
// 2, with one line on stderr, for wrong arguments and bad input; 1, with one line too, for what
// else goes wrong.
int runProgram(const char* name, const char* description, int argc, char** argv,
               const std::function<void(CLI::App&)>& declare, const std::function<int()>& body);

#endif
