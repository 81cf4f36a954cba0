// SPDX-License-Identifier: MIT
// Cycles of one call, in core cycles calibrated around every measurement.
#pragma once

#include <vector>

#include "subject.h"

namespace orvgen::bench {

struct Cycles {
    double least = 0;
    double median = 0;
};

struct Timing {
    Cycles burst;    // long bursts of independent calls
    Cycles brief;    // a few calls after other kernels have run
    Cycles latency;  // calls that wait for each other
};

struct Effort {
    int samples = 15;
    double cyclesPerSample = 60000;
    int callsAtLeast = 300;
    int briefSamples = 31;
    int briefCalls = 8;
    int copies = 2;  // of the library, beside the file as built; the fastest counts
};

class Measurement {
  public:
    explicit Measurement(Effort e) : effort(e) {}

    Cycles burst(const Loop& loop, const void* src, void* dst, Pace pace) const;
    // `others` run before each short burst.
    Cycles brief(const Loop& loop, const void* src, void* dst,
                 const std::vector<const Loop*>& others) const;

  private:
    Effort effort;
};

}  // namespace orvgen::bench
