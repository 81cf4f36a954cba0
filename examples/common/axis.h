// SPDX-License-Identifier: MIT
// Round numbers for axes, and their labels.

#ifndef EXAMPLES_AXIS_H
#define EXAMPLES_AXIS_H

#include <string>

// A number by a format of printf for one double.
std::string formatted(const char* format, double value);

// A round step (1, 2 or 5 times a power of ten) that cuts the range into about `parts` parts.
double roundStep(double range, double parts);

// A label with as many decimals as the step needs.
std::string stepLabel(double value, double step);

// An axis from 0 to some seconds: its step, labels and unit. Above a minute steps divide a minute
// or an hour; below a tenth of a second the labels are milliseconds.
class TimeAxis {
  public:
    TimeAxis(double seconds, double parts);

    double step() const { return step_; }
    std::string label(double seconds) const;
    const char* unit() const;

  private:
    double seconds_;
    double step_;
};

#endif
