// SPDX-License-Identifier: MIT
// All functions from several threads at once, while another one changes the target all the time;
// and how much of the stack a call takes.
#include <gtest/gtest.h>
#include <ucontext.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "batch/comparison.h"

namespace orvgen::test::batch {
namespace {

// One batch in rows, with its results as every thread must find them.
template <class R>
struct Case {
    const Family<R>* family;
    int number;
    std::vector<R> src[2], expected[2];
    static constexpr std::size_t count = 21;

    std::size_t reals(const Side& side) const {
        return static_cast<std::size_t>(side.elements(family->points(number)) * side.width);
    }
    OrvStatus run(std::vector<R> (&dst)[2]) const {
        const Side &from = family->src, &to = family->dst;
        const int points = family->points(number);
        return family->batch({{src[0].data(), src[1].data()}, 1, from.elements(points)},
                             {{dst[0].data(), dst[1].data()}, 1, to.elements(points)}, number,
                             count, orvScaleBySqrtN);
    }
    Case(const Family<R>& f, int n) : family(&f), number(n) {
        for (int p = 0; p < f.src.planes; ++p)
            src[p] = draw<R>(Data::Ordinary, count * reals(f.src), static_cast<unsigned>(n + p));
        for (int p = 0; p < f.dst.planes; ++p) expected[p].resize(count * reals(f.dst));
        EXPECT_EQ(run(expected), orvOk) << f.name;
    }
    bool repeats() const {
        std::vector<R> found[2];
        for (int p = 0; p < 2; ++p) found[p].resize(expected[p].size());
        return run(found) == orvOk && found[0] == expected[0] && found[1] == expected[1];
    }
};

template <class R>
std::vector<Case<R>> cases() {
    std::vector<Case<R>> list;
    for (const Family<R>& family : families<R>())
        for (const int number : family.numbers)
            if (number % 8 == 0 || number == 13) list.emplace_back(family, number);
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
void expectLittleStack(PaintedStack& stack, std::size_t& most) {
    for (const Family<R>& family : families<R>())
        for (const int number : family.numbers) {
            const Case<R> c(family, number);
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
TEST(Stack, IsNotMuch) {
    for (const std::uint32_t target : runnableTargets()) {
        ASSERT_EQ(orvgBatchUse(target), orvOk);
        PaintedStack stack;
        std::size_t most = 0;
        expectLittleStack<float>(stack, most);
        expectLittleStack<double>(stack, most);
        EXPECT_GT(most, 512U) << "nothing was measured";
        std::printf("%s: at most %zu bytes of stack\n", nameOf(target), most);
    }
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}
#endif

}  // namespace
}  // namespace orvgen::test::batch
