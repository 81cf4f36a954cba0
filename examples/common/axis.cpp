// SPDX-License-Identifier: MIT
#include "axis.h"

#include <array>
#include <cmath>
#include <cstdio>

std::string formatted(const char* format, double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

double roundStep(double range, double parts) {
    const double raw = range / parts;
    const double power = std::pow(10, std::floor(std::log10(raw)));
    for (const double m : {1.0, 2.0, 5.0}) {
        if (m * power >= raw) return m * power;
    }
    return 10 * power;
}

std::string stepLabel(double value, double step) {
    const int decimals = step >= 1 ? 0 : static_cast<int>(std::ceil(-std::log10(step) - 1e-9));
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

namespace {

double timeStep(double seconds, double parts) {
    if (seconds <= 60) return roundStep(seconds, parts);
    for (const double s : {5.0, 10.0, 15.0, 30.0, 60.0, 120.0, 300.0, 600.0, 900.0, 1800.0}) {
        if (s >= seconds / parts) return s;
    }
    return 3600 * std::ceil(seconds / parts / 3600);
}

}  // namespace

TimeAxis::TimeAxis(double seconds, double parts)
    : seconds_(seconds), step_(timeStep(seconds, parts)) {}

const char* TimeAxis::unit() const {
    return seconds_ >= 3600 ? "h:min:s" : seconds_ > 60 ? "min:s" : seconds_ >= 0.1 ? "s" : "ms";
}

std::string TimeAxis::label(double seconds) const {
    if (seconds_ < 0.1) return stepLabel(1000 * seconds, 1000 * step_);
    if (seconds_ <= 60) return stepLabel(seconds, step_);
    const long s = std::lround(seconds);
    std::array<char, 64> text{};
    if (seconds_ >= 3600) {
        std::snprintf(text.data(), text.size(), "%ld:%02ld:%02ld", s / 3600, s / 60 % 60, s % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%ld:%02ld", s / 60, s % 60);
    }
    return text.data();
}
