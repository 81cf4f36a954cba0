// SPDX-License-Identifier: MIT
// What a function may not do to its caller is found, each fault in a function of its own.
#include "stress/processor.h"

#include <gtest/gtest.h>

#define FAULT(NAME) extern "C" void orvgenFault_##NAME()
FAULT(none);
FAULT(spoils_rbx);
FAULT(spoils_rbp);
FAULT(spoils_r12);
FAULT(spoils_r13);
FAULT(spoils_r14);
FAULT(spoils_r15);
FAULT(sets_direction);
FAULT(rounds_down);
FAULT(masks_all);
FAULT(clears_flags);
FAULT(adds_empty_lanes);
FAULT(adds_empty_lane);
FAULT(adds_stale_slot);
FAULT(reads_whole_argument);
#undef FAULT

namespace orvgen::test {
namespace {

// Over all patterns: what is found, the control word's complaint or the flags that come up.
std::vector<std::string> found(PlainFunction function, std::uint32_t control) {
    const float data[2] = {1, 1};
    std::vector<std::string> texts;
    for (const Pattern& pattern : patterns) {
        Arguments a;
        a.pointer(0, data);
        a.integer(2, 8);
        const Outcome o = callCatching(function, a, control, pattern);
        std::string text = o.fault;
        if (text.empty()) text = checkControl(control, o.control);
        if (text.empty() && o.status != 0) text = "status " + std::to_string(o.status);
        if (text.empty() && (o.control & mxcsr::flags & ~control) != 0) text = "raises flags";
        texts.push_back(text);
    }
    return texts;
}

using Texts = std::vector<std::string>;

constexpr std::uint32_t masked = mxcsr::masks;
constexpr std::uint32_t open = mxcsr::inexactMask;

TEST(Processor, FindsNothingInASoundFunction) {
    EXPECT_EQ(found(orvgenFault_none, masked), Texts(4));
    EXPECT_EQ(found(orvgenFault_none, masked | mxcsr::flags), Texts(4));
    EXPECT_EQ(found(orvgenFault_none, 0), Texts(4));
}

TEST(Processor, FindsSpoiltRegisters) {
    const PlainFunction functions[] = {orvgenFault_spoils_rbx,    orvgenFault_spoils_rbp,
                                       orvgenFault_spoils_r12,    orvgenFault_spoils_r13,
                                       orvgenFault_spoils_r14,    orvgenFault_spoils_r15,
                                       orvgenFault_sets_direction};
    int set = 1;
    for (const PlainFunction f : functions) {
        EXPECT_EQ(found(f, masked),
                  Texts(4, "spoils the caller's registers, set " + std::to_string(set)));
        set *= 2;
    }
}

TEST(Processor, FindsChangesOfTheControlWord) {
    EXPECT_EQ(found(orvgenFault_rounds_down, masked), Texts(4, "changes the control word"));
    EXPECT_EQ(found(orvgenFault_masks_all, open), Texts(4, "changes the control word"));
    EXPECT_EQ(found(orvgenFault_clears_flags, masked | mxcsr::flags),
              Texts(4, "clears a sticky flag"));
}

// The patterns are signalling NaNs of binary32, of binary64, denormals of both, quiet NaNs.
TEST(Processor, FindsTheUseOfWhatNobodyWrote) {
    const std::string trap = "trap of the arithmetic", flags = "raises flags";
    EXPECT_EQ(found(orvgenFault_adds_empty_lanes, open)[0], trap);
    EXPECT_EQ(found(orvgenFault_adds_empty_lanes, open)[2], trap);
    EXPECT_EQ(found(orvgenFault_adds_empty_lanes, masked)[0], flags);
    EXPECT_EQ(found(orvgenFault_adds_empty_lane, open)[1], trap);
    EXPECT_EQ(found(orvgenFault_adds_empty_lane, masked)[1], flags);
    EXPECT_EQ(found(orvgenFault_adds_stale_slot, open)[0], trap);
    EXPECT_EQ(found(orvgenFault_adds_stale_slot, masked)[0], flags);
}

TEST(Processor, FillsTheUpperHalvesOfIntegers) {
    EXPECT_EQ(found(orvgenFault_reads_whole_argument, masked), Texts(4, "status 1"));
}

}  // namespace
}  // namespace orvgen::test
