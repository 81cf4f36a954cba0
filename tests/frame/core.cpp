// SPDX-License-Identifier: MIT
// The stand-in core library: two functions, and the promises that the product relies on.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "orvcore.h"

namespace {

TEST(Core, BlocksLieOnA64ByteBoundaryAndCanBeWritten) {
    for (const int32_t bytes : {1, 15, 16, 17, 64, 1024, 73728, 1 << 24}) {
        void* block = orvMalloc(bytes);
        ASSERT_NE(block, nullptr) << bytes;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0U) << bytes;
        std::memset(block, 0xA5, static_cast<std::size_t>(bytes));
        orvFree(block);
    }
}

TEST(Core, ZeroBytesGiveABlockThatCanBeFreed) {
    void* block = orvMalloc(0);
    EXPECT_NE(block, nullptr);
    orvFree(block);
}

TEST(Core, NegativeCountsGiveNull) {
    for (const int32_t bytes : {-1, -64, std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ(orvMalloc(bytes), nullptr) << bytes;
    }
}

#ifndef __SANITIZE_ADDRESS__  // whose shadow memory does not fit under the limit
TEST(Core, ExhaustedMemoryGivesNull) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
    rlimit tight = before;
    tight.rlim_cur = 1U << 29;
    ASSERT_EQ(setrlimit(RLIMIT_AS, &tight), 0);
    void* block = orvMalloc(1 << 30);
    ASSERT_EQ(setrlimit(RLIMIT_AS, &before), 0);
    EXPECT_EQ(block, nullptr);
}
#endif

TEST(Core, NullMayBeFreed) {
    EXPECT_EXIT((orvFree(nullptr), std::_Exit(0)), testing::ExitedWithCode(0), "");
}

}  // namespace
