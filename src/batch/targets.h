// SPDX-License-Identifier: MIT
// What a call runs on.
#pragma once

#include <cstddef>
#include <cstdint>

#include "batch/task.h"

namespace orvgen::batch {

// The target that the next call is to run on: the one chosen, or the best.
std::uint32_t currentTarget();

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
