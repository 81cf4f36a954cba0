// What the examples' main functions share: arguments by CLI11, failures in one line.

#ifndef EXAMPLES_PROGRAM_H
#define EXAMPLES_PROGRAM_H

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <functional>
#include <stdexcept>

// What is wrong with the input, in one line for the user.
class BadInput : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A number between the limits; CLI::Range would let a NaN pass.
CLI::Validator within(double least, double most);

// Declares and reads the arguments and runs the body. The exit status: the body's; 0 after --help;
// 2, with one line on stderr, for wrong arguments and bad input; 1, with one line too, for what
// else goes wrong.
int runProgram(const char* name, const char* description, int argc, char** argv,
               const std::function<void(CLI::App&)>& declare, const std::function<int()>& body);

#endif
