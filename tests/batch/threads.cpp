// SPDX-License-Identifier: MIT
// All functions from several threads at once, while another one changes the target all the time.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "batch/cases.h"

namespace orvgen::test::batch {
namespace {

template <class R>
std::vector<Case<R>> cases() {
    std::vector<Case<R>> list;
    for (const Family<R>& family : families<R>())
        for (const int number : family.numbers)
            for (const std::ptrdiff_t stride : {1, 2})
                if (number % 8 == 0 || number == 13) list.emplace_back(family, number, stride);
    return list;
}

TEST(BatchThreads, DoNotMeet) {
    ASSERT_EQ(orvgBatchUse(orvTargetSSE2), orvOk);
    const auto single = cases<float>();
    const auto dual = cases<double>();
    ASSERT_EQ(orvgBatchUse(0), orvOk);
    std::atomic<int> wrong = 0, done = 0;
    const auto work = [&](std::size_t shift) {
        for (std::size_t i = 0; i < single.size(); ++i) {
            if (!single[(i + shift) % single.size()].repeats()) ++wrong;
            if (!dual[(i + shift) % dual.size()].repeats()) ++wrong;
        }
        ++done;
    };
    constexpr int threadCount = 4;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t)
        threads.emplace_back(work, static_cast<std::size_t>(t) * 31);
    const auto targets = runnableTargets();
    for (std::size_t i = 0; done < threadCount; ++i) {
        EXPECT_EQ(orvgBatchUse(targets[i % targets.size()]), orvOk);
        std::this_thread::yield();
    }
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(orvgBatchUse(0), orvOk);
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace orvgen::test::batch
