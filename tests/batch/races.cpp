// SPDX-License-Identifier: MIT
// The choice of a target from several threads at once. Built with the sanitizer of threads, which
// ends the program with a status of its own where it sees a race.
#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

#include "batch/targets.h"

namespace {

constexpr unsigned rounds = 1000, threadCount = 4, choiceCount = 3;
constexpr std::uint32_t choices[choiceCount] = {0, orvTargetSSE2, 64};
constexpr OrvStatus expected[choiceCount] = {orvOk, orvOk, orvErrFlag};

}  // namespace

int main() {
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    // Nobody has asked the processor before: the first calls meet here.
    for (unsigned t = 0; t < threadCount; ++t)
        threads.emplace_back([&wrong, t] {
            for (unsigned i = 0; i < rounds; ++i) {
                const unsigned which = (t + i) % choiceCount;
                if (orvgBatchUse(choices[which]) != expected[which]) ++wrong;
                if ((orvgBatchTargets() & orvgen::batch::currentTarget()) == 0) ++wrong;
            }
        });
    for (std::thread& thread : threads) thread.join();
    if (wrong != 0) std::printf("%d wrong answers\n", wrong.load());
    return wrong != 0;
}
