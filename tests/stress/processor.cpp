// SPDX-License-Identifier: MIT
#include "stress/processor.h"

#include <xmmintrin.h>

#include "support/guarded.h"

namespace orvgen::test {
namespace {

struct State {
    std::uint64_t pattern[2];
    std::uint32_t before, after;
    std::uint64_t spoiled;
};

extern "C" std::int32_t orvgenStressCall(PlainFunction, const std::uint64_t*, State*);

}  // namespace

Outcome callWith(PlainFunction function, const Arguments& arguments, std::uint32_t control,
                 const Pattern& pattern) {
    State state = {{pattern.low, pattern.high}, control, 0, 0};
    Outcome outcome;
    outcome.status = orvgenStressCall(function, arguments.value, &state);
    outcome.control = state.after;
    if (state.spoiled != 0) {
        outcome.fault = "spoils the caller's registers, set " + std::to_string(state.spoiled);
    }
    return outcome;
}

Outcome callCatching(PlainFunction function, const Arguments& arguments, std::uint32_t control,
                     const Pattern& pattern) {
    const std::uint32_t own = _mm_getcsr();
    Outcome outcome;
    const std::string trap =
        catchFault([&] { outcome = callWith(function, arguments, control, pattern); }, nullptr);
    _mm_setcsr(own);
    if (!trap.empty()) outcome.fault = trap;
    return outcome;
}

std::string checkControl(std::uint32_t before, std::uint32_t after) {
    if (((before ^ after) & ~mxcsr::flags) != 0) return "changes the control word";
    if ((before & mxcsr::flags & ~after) != 0) return "clears a sticky flag";
    return "";
}

}  // namespace orvgen::test
