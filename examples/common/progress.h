// SPDX-License-Identifier: MIT
// How far long work has come.

#ifndef EXAMPLES_PROGRESS_H
#define EXAMPLES_PROGRESS_H

#include <chrono>
#include <functional>
#include <string>

// Called with the part that is done, between 0 and 1.
using Progress = std::function<void(double)>;

// On stderr once the work has taken a while: one line that counts on a terminal, a line for every
// tenth part elsewhere.
class ProgressLine {
  public:
    explicit ProgressLine(std::string what) : what_(std::move(what)) {}
    void operator()(double part);

  private:
    using Clock = std::chrono::steady_clock;

    std::string what_;
    Clock::time_point begin_ = Clock::now();
    int shown_ = 0;
};

#endif
