// SPDX-License-Identifier: MIT
// A recursion level for all groups of sequences at once, instead of for one after the other.
#pragma once

#include "dct4/oddfrequency.h"
#include "dct4/records.h"

namespace orvgen::dct4 {

// As many as the first stage of a long transform has.
constexpr std::int32_t sequencesTogether = 32;

// Whether it is worth it: as long as the nearest cache holds an array of the transform, one group
// after the other is as fast.
template <class Real>
constexpr bool worthTogether(std::int32_t r, std::int32_t length) {
    return r == sequencesTogether && length > 32768 / static_cast<std::int32_t>(sizeof(Real));
}

// What env7_compute gives for every group of the walk, bit for bit. The walk has all the sequences,
// which start next to each other.
template <class Real>
OrvStatus computeTogether(const Env7<Real>& level, const SequenceWalk<Real>& groups);

}  // namespace orvgen::dct4
