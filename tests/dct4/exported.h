// SPDX-License-Identifier: MIT
// The exported functions of a family, by its element type.
#pragma once

#include "orvgen.h"

namespace orvgen::test::dct4 {

template <class Real>
struct ExportedOf;

template <>
struct ExportedOf<Orv32f> {
    using Spec = OrvDCT4Spec_32f;
    static constexpr auto getSize = orvgDCT4GetSize_32f;
    static constexpr auto init = orvgDCT4Init_32f;
    static constexpr auto initAlloc = orvgDCT4InitAlloc_32f;
    static constexpr auto free = orvgDCT4Free_32f;
    static constexpr auto run = orvgDCT4_32f;
};

template <>
struct ExportedOf<Orv64f> {
    using Spec = OrvDCT4Spec_64f;
    static constexpr auto getSize = orvgDCT4GetSize_64f;
    static constexpr auto init = orvgDCT4Init_64f;
    static constexpr auto initAlloc = orvgDCT4InitAlloc_64f;
    static constexpr auto free = orvgDCT4Free_64f;
    static constexpr auto run = orvgDCT4_64f;
};

}  // namespace orvgen::test::dct4
