// SPDX-License-Identifier: MIT
// How much of the stack a call takes as it runs, with the single functions that it calls.
#include <gtest/gtest.h>
#include <ucontext.h>

#include <algorithm>
#include <cstdio>

#include "batch/cases.h"

namespace orvgen::test::batch {
namespace {

// The stack below a call, painted, and how much of the paint is gone.
class PaintedStack {
  public:
    PaintedStack() : memory_(size, paint) {}

    template <class Work>
    std::size_t used(Work& work) {
        std::fill(memory_.begin(), memory_.end(), paint);
        ucontext_t inside;
        getcontext(&inside);
        inside.uc_stack.ss_sp = memory_.data();
        inside.uc_stack.ss_size = size;
        inside.uc_link = &outside_;
        work_ = [](void* w) { (*static_cast<Work*>(w))(); };
        argument_ = &work;
        current_ = this;
        makecontext(
            &inside, [] { current_->work_(current_->argument_); }, 0);
        swapcontext(&outside_, &inside);
        const auto first =
            std::find_if(memory_.begin(), memory_.end(), [](auto b) { return b != paint; });
        return static_cast<std::size_t>(memory_.end() - first);
    }

  private:
    static constexpr std::size_t size = 1 << 20;
    static constexpr std::uint8_t paint = 0xa5;
    static inline PaintedStack* current_;
    std::vector<std::uint8_t> memory_;
    ucontext_t outside_;
    void (*work_)(void*) = nullptr;
    void* argument_ = nullptr;
};

template <class R>
void expectLittleStack(PaintedStack& stack, std::ptrdiff_t stride, std::size_t& most) {
    for (const Family<R>& family : families<R>())
        for (const int number : family.numbers) {
            const Case<R> c(family, number, stride);
            bool right = false;
            auto work = [&] { right = c.repeats(); };
            const std::size_t used = stack.used(work);
            most = std::max(most, used);
            EXPECT_TRUE(right) << family.name << " of " << number;
            // What the test itself puts there is a few hundred bytes.
            EXPECT_LE(used, (256U << 10) + 1024) << family.name << " of " << number;
        }
}

#ifndef __SANITIZE_ADDRESS__  // whose frames are larger, and which knows one stack only
TEST(Stack, IsTakenByFewBytes) {
    for (const std::uint32_t target : runnableTargets()) {
        ASSERT_EQ(orvgBatchUse(target), orvOk);
        PaintedStack stack;
        std::size_t most = 0;
        for (const std::ptrdiff_t stride : {1, 2}) {
            expectLittleStack<float>(stack, stride, most);
            expectLittleStack<double>(stack, stride, most);
        }
        EXPECT_GT(most, 512U) << "nothing was measured";
        std::printf("%s: at most %zu bytes of stack\n", nameOf(target), most);
    }
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}
#endif

}  // namespace
}  // namespace orvgen::test::batch
