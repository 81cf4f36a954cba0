// SPDX-License-Identifier: MIT
// The exported functions of the DCT-IV by element type.
#pragma once

#include <cstdint>

#include "orvgen.h"

namespace orvgen::test {

template <class Real>
struct Dct4Functions;

template <>
struct Dct4Functions<Orv32f> {
    using Spec = OrvDCT4Spec_32f;
    static constexpr std::int32_t longest = ORVGEN_DCT4_MAX_LENGTH_32f;
    static constexpr auto getSize = orvgDCT4GetSize_32f;
    static constexpr auto init = orvgDCT4Init_32f;
    static constexpr auto initAlloc = orvgDCT4InitAlloc_32f;
    static constexpr auto free = orvgDCT4Free_32f;
    static constexpr auto run = orvgDCT4_32f;
};

template <>
struct Dct4Functions<Orv64f> {
    using Spec = OrvDCT4Spec_64f;
    static constexpr std::int32_t longest = ORVGEN_DCT4_MAX_LENGTH_64f;
    static constexpr auto getSize = orvgDCT4GetSize_64f;
    static constexpr auto init = orvgDCT4Init_64f;
    static constexpr auto initAlloc = orvgDCT4InitAlloc_64f;
    static constexpr auto free = orvgDCT4Free_64f;
    static constexpr auto run = orvgDCT4_64f;
};

}  // namespace orvgen::test
