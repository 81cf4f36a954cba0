// SPDX-License-Identifier: MIT
// Whether the machine has anything else to do while it measures.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace orvgen::bench {

// A warning where more runs than leaves a core to the measurement; empty where the machine is idle.
inline std::string whatElseRuns() {
    double load = 0;
    const auto cores = static_cast<double>(std::thread::hardware_concurrency());
    if (getloadavg(&load, 1) != 1 || load < 0.5 * cores) return "";
    char text[128];
    std::snprintf(
        text, sizeof text,
        "WARNING: the machine is busy (load %.1f on %.0f cores); the figures are too high", load,
        cores);
    return text;
}

// The same, said on stderr before a program measures.
inline void warnOfWhatElseRuns(const char* program) {
    if (const std::string busy = whatElseRuns(); !busy.empty())
        std::fprintf(stderr, "%s: %s\n", program, busy.c_str());
}

}  // namespace orvgen::bench
