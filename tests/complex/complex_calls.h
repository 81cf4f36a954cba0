// SPDX-License-Identifier: MIT
// The complex kernels by direction, precision and length, on vectors of reals.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "kernels/kernel_list.h"
#include "orvgen.h"

namespace orvgen::test {

inline constexpr Direction kBothDirections[] = {Direction::Forward, Direction::Inverse};

inline std::string complexName(Direction direction, int length, Precision precision) {
    return (direction == Direction::Inverse ? "orvgDFTInv_CToC_" : "orvgDFTFwd_CToC_") +
           std::to_string(length) + (precision == Precision::Single ? "_32fc" : "_64fc");
}

// Null where the header lists no such kernel.
inline const ListedKernel* complexKernel(Direction direction, int length, Precision precision) {
    const std::string name = complexName(direction, length, precision);
    for (const ListedKernel& k : listedKernels()) {
        if (k.name == name) return &k;
    }
    return nullptr;
}

// Unscaled, on aligned buffers, with a finite value behind src.
template <class Real>
std::vector<Real> transform(const ListedKernel& k, const std::vector<Real>& x,
                            Real behind = Real{1}) {
    struct alignas(16) Buffer {
        Real values[130];
    };
    Buffer src, dst;
    for (Real& v : src.values) v = behind;
    std::copy(x.begin(), x.end(), src.values);
    if (k.call(src.values, dst.values, orvScaleNone) != orvOk) return {};
    return {dst.values, dst.values + x.size()};
}

}  // namespace orvgen::test
