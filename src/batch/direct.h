// SPDX-License-Identifier: MIT
// Whole blocks that the kernels take where they are, in calls that do nothing else.
//
// The kernel of a block of a few points takes as long as some twenty instructions of a call do. So
// the exported functions look such kernels up by themselves, and call them at once.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "batch/task.h"

namespace orvgen::batch {

// What transforms side by side are, on both sides: a kind of transform, and whether real and
// imaginary parts are arrays of their own.
enum DirectForm : std::uint8_t {
    directForward,
    directInverse,
    directRealForward,
    directInverseFromCcs,
    directHartley,
    directSplitForward,
    directSplitInverse,
    directForms,
};

// The kernels of a target for such transforms.
template <class R>
struct Direct {
    BlockKernel<R>* const* kernels;  // of all lengths, in their order
    int shift;                       // binary logarithm of the transforms of a block
    int lanes;                       // of a vector, behind which the second half of pairs stands
    std::ptrdiff_t src, dst;         // bytes of one element of a block
};
template <class R>
struct DirectsAvx2 {
    [[gnu::visibility("hidden")]] static const std::array<Direct<R>, directForms> of;
};
template <class R>
struct DirectsAvx512 {
    [[gnu::visibility("hidden")]] static const std::array<Direct<R>, directForms> of;
};

extern template struct DirectsAvx2<float>;
extern template struct DirectsAvx2<double>;
extern template struct DirectsAvx512<float>;
extern template struct DirectsAvx512<double>;

// No elements crowd into few sets of the first-level cache where the largest power of two in their
// stride, in bytes, is not above this (tiles.h).
inline constexpr std::ptrdiff_t kSpreadBytes = 256;

// So many transforms of any length are in some cache; of more a task asks (far_columns.h).
inline constexpr std::size_t kNearTransforms = 8192;

}  // namespace orvgen::batch
