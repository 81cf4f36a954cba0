// SPDX-License-Identifier: MIT
// The complex kernels by direction, precision and length, on vectors of reals.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "kernels/kernel_list.h"
#include "orvgen.h"

namespace orvgen::test {

inline std::string complexName(bool inverse, int length, bool single) {
    return (inverse ? "orvgDFTInv_CToC_" : "orvgDFTFwd_CToC_") + std::to_string(length) +
           (single ? "_32fc" : "_64fc");
}

// Null where the header lists no such kernel.
inline const ListedKernel* complexKernel(bool inverse, int length, bool single) {
    const std::string name = complexName(inverse, length, single);
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
