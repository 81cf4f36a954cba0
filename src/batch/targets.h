// SPDX-License-Identifier: MIT
// What a call runs on.
#pragma once

#include <cstddef>
#include <cstdint>

#include "batch/task.h"

namespace orvgen::batch {

// Bit 31 tells that the processor has been asked; the low byte is the set of targets, the next one
// the chosen target. One word, so that any thread sees a whole choice; whoever asks first writes
// what anybody else would write.
extern std::uint32_t targetState [[gnu::visibility("hidden")]];
constexpr std::uint32_t kAsked = 1U << 31;
constexpr int kChoice = 8;

// Its value, the processor having been asked.
std::uint32_t askedTargetState();

// The target that the next call is to run on: the one chosen, or the best.
inline std::uint32_t currentTarget() {
    std::uint32_t state = __atomic_load_n(&targetState, __ATOMIC_RELAXED);
    if (__builtin_expect(!(state & kAsked), 0)) state = askedTargetState();
    return state >> kChoice & 0xff;
}

// The same, and 0 as long as the processor has not been asked.
inline std::uint32_t knownTarget() {
    return __atomic_load_n(&targetState, __ATOMIC_RELAXED) >> kChoice & 0xff;
}

// What a target does with a call. The wide ones return how many transforms from the first on they
// have done; the single kernels do the rest.
template <class R>
std::size_t runBlocksAvx2(const Task<R>& task);
template <class R>
std::size_t runBlocksAvx2(const WhtTask<R>& task);
template <class R>
std::size_t runBlocksAvx2(const Dct4Task<R>& task);
template <class R>
std::size_t runBlocksAvx512(const Task<R>& task);
template <class R>
std::size_t runBlocksAvx512(const WhtTask<R>& task);
template <class R>
std::size_t runBlocksAvx512(const Dct4Task<R>& task);

}  // namespace orvgen::batch
