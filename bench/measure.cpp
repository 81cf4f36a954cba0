// SPDX-License-Identifier: MIT
#include "measure.h"

#include <algorithm>

#include "cycles.h"

namespace orvgen::bench {
namespace {

Cycles summary(std::vector<double> values) {
    if (values.empty()) return {};
    std::sort(values.begin(), values.end());
    return {values.front(), values[values.size() / 2]};
}

// Cycles that `calls` calls take; negative where the clock moved meanwhile.
double sample(const Loop& loop, const void* src, void* dst, int calls, Pace pace, double empty) {
    const double before = ticksPerCycle();
    const std::uint64_t start = ticks();
    loop(src, dst, calls, pace);
    const auto taken = static_cast<double>(ticks() - start) - empty;
    const double after = ticksPerCycle();
    if (std::max(before, after) > 1.01 * std::min(before, after)) return -1;
    return taken / ((before + after) / 2);
}

}  // namespace

Cycles Measurement::burst(const Loop& loop, const void* src, void* dst, Pace pace) const {
    const double empty = emptyTicks();
    loop(src, dst, 30, pace);
    double guess = -1;
    for (int i = 0; i < 10 && guess < 0; ++i) guess = sample(loop, src, dst, 20, pace, empty) / 20;
    const int calls = std::max(effort.callsAtLeast,
                               static_cast<int>(effort.cyclesPerSample / std::max(guess, 10.0)));
    std::vector<double> values;
    for (int i = 0; i < 4 * effort.samples && static_cast<int>(values.size()) < effort.samples;
         ++i) {
        const double v = sample(loop, src, dst, calls, pace, empty);
        if (v > 0) values.push_back(v / calls);
    }
    return summary(std::move(values));
}

Cycles Measurement::brief(const Loop& loop, const void* src, void* dst,
                          const std::vector<const Loop*>& others) const {
    const double empty = emptyTicks();
    const double perCycle = ticksPerCycle();
    std::vector<double> values;
    for (int i = 0; i < effort.briefSamples; ++i) {
        for (const Loop* other : others) (*other)(src, dst, 3, Pace::free);
        const std::uint64_t start = ticks();
        loop(src, dst, effort.briefCalls, Pace::free);
        const auto taken = static_cast<double>(ticks() - start) - empty;
        values.push_back(std::max(0.0, taken / perCycle / effort.briefCalls));
    }
    return summary(std::move(values));
}

}  // namespace orvgen::bench
