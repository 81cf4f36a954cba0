// SPDX-License-Identifier: MIT
// The choice of a target, which no exported function tells: what is chosen stays chosen.
#include <gtest/gtest.h>

#include <bit>

#include "batch/families.h"
#include "batch/targets.h"

namespace orvgen::test::batch {
namespace {

using orvgen::batch::currentTarget;

// The last of the targets has the widest vectors.
std::uint32_t best() { return std::bit_floor(orvgBatchTargets()); }

TEST(Choice, IsTheBestTargetAtFirstAndFor0) {
    // Nothing has been chosen in this program yet.
    EXPECT_EQ(currentTarget(), best());
    ASSERT_EQ(orvgBatchUse(orvTargetSSE2), orvOk);
    EXPECT_EQ(currentTarget(), std::uint32_t{orvTargetSSE2});
    ASSERT_EQ(orvgBatchUse(0), orvOk);
    EXPECT_EQ(currentTarget(), best());
}

TEST(Choice, StaysUntilTheNextOne) {
    for (const std::uint32_t target : runnableTargets()) {
        ASSERT_EQ(orvgBatchUse(target), orvOk);
        EXPECT_EQ(currentTarget(), target);
        // Neither questions nor what is refused change it.
        const std::uint32_t targets = orvgBatchTargets();
        for (const std::uint32_t bad : {3U, 6U, 7U, 8U, 0x100U, 0x80000000U, ~0U, ~targets})
            EXPECT_EQ(orvgBatchUse(bad), orvErrFlag) << bad;
        EXPECT_EQ(orvgBatchTargets(), targets);
        EXPECT_EQ(currentTarget(), target);
    }
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}

}  // namespace
}  // namespace orvgen::test::batch
