// SPDX-License-Identifier: MIT
// The loop over the single kernels: the whole of target SSE2, and what is left over behind the
// blocks of the other targets.
#pragma once

#include "batch/task.h"

namespace orvgen::batch {

// The transforms from number `first` on.
template <class R>
void runSingles(const Task<R>& task, std::size_t first);
template <class R>
void runSingles(const WhtTask<R>& task, std::size_t first);
template <class R>
void runSingles(const Dct4Task<R>& task, std::size_t first);

}  // namespace orvgen::batch
