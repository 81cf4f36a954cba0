// SPDX-License-Identifier: MIT
// What the library's own code and its tests know about the families beyond the lists of the public
// header: the range of lengths, and which kernels have a twin.
//
// A kernel's twin is the same transform for buffers that are not on a 16-byte boundary. It bears
// the kernel's name with `owng` for `orvg` and `_unaligned` behind it, and is no export.

#ifndef ORVGEN_FRAME_FAMILIES_H
#define ORVGEN_FRAME_FAMILIES_H

#include "orvgen.h"

namespace orvgen {

constexpr int firstLength = 2;
constexpr int lastLength = 64;
constexpr int firstOrder = 1;
constexpr int lastOrder = 13;

// The smallest length with a twin, by element type; every longer one has a twin too. Shorter
// complex kernels and all real ones have a single body that takes any alignment (64fc lengths 2 to
// 4 hold two bodies in one function).
constexpr int noTwins = lastLength + 1;
constexpr int firstTwinLength_32fc = 6;
constexpr int firstTwinLength_64fc = 5;
constexpr int firstTwinLength_32f = noTwins;
constexpr int firstTwinLength_64f = noTwins;

// The same for the Walsh-Hadamard orders, in both element types.
constexpr int firstTwinOrder = 4;

}  // namespace orvgen

// Declarations of the twins. They name a function for every listed length, also where there is no
// twin; use a twin's name only under `if constexpr (N >= firstTwin...)`.
#define ORVGEN_DECLARE_TWIN(NAME, N, T) \
    extern "C" OrvStatus owng##NAME##_##N##_##T##_unaligned(const Orv##T*, Orv##T*, int32_t);
#define ORVGEN_DECLARE_TWINS(NAME, T, LIST) LIST(ORVGEN_DECLARE_TWIN, NAME, T)
ORVGEN_LENGTH_FAMILIES(ORVGEN_DECLARE_TWINS)
#undef ORVGEN_DECLARE_TWIN

#define ORVGEN_DECLARE_TWIN(NAME, K, T)                                                      \
    extern "C" OrvStatus owng##NAME##_##K##_##T##_unaligned(const Orv##T*, Orv##T*, int32_t, \
                                                            uint8_t*);
ORVGEN_ORDER_FAMILIES(ORVGEN_DECLARE_TWINS)
#undef ORVGEN_DECLARE_TWIN
#undef ORVGEN_DECLARE_TWINS

#endif
