// SPDX-License-Identifier: MIT
// Single elements of source and destination, which may lie at any address; and how many elements a
// vector holds.
#pragma once

#include <cstring>

#include "dct4/flows/complex.h"

namespace orvgen::dct4 {

constexpr int vectorBytes = 16;
template <class Real>
constexpr int lanes = vectorBytes / static_cast<int>(sizeof(Real));

template <class Real>
ORVGEN_DCT4_INLINE Real loadElement(const Real* p) {
    Real value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

template <class Real>
ORVGEN_DCT4_INLINE void storeElement(Real* p, Real value) {
    std::memcpy(p, &value, sizeof value);
}

}  // namespace orvgen::dct4
