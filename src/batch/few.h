// SPDX-License-Identifier: MIT
// From how many transforms on vectors pay.
#pragma once

#include <cstdint>

#include "batch/task.h"

namespace orvgen::batch {

// Below 8, 16, 32 points and from there on.
struct ByLength {
    int from[4];
};
constexpr int kAvx2Bytes = 32, kAvx512Bytes = 64;

// As measured; a block with idle lanes is as much work for one transform as for all, and some 100
// cycles besides. By width of the vectors, element type and real or complex.
struct Worthwhile {
    int vectorBytes, realBytes;
    bool complex;
    ByLength least;
};
inline constexpr Worthwhile kWorthwhile[] = {
    {.vectorBytes = kAvx2Bytes, .realBytes = 4, .complex = false, .least = {8, 7, 5, 4}},
    {.vectorBytes = kAvx2Bytes, .realBytes = 4, .complex = true, .least = {8, 8, 7, 6}},
    {.vectorBytes = kAvx2Bytes, .realBytes = 8, .complex = false, .least = {4, 4, 4, 3}},
    {.vectorBytes = kAvx2Bytes, .realBytes = 8, .complex = true, .least = {4, 4, 4, 4}},
    {.vectorBytes = kAvx512Bytes, .realBytes = 4, .complex = false, .least = {16, 13, 7, 5}},
    {.vectorBytes = kAvx512Bytes, .realBytes = 4, .complex = true, .least = {16, 13, 9, 7}},
    {.vectorBytes = kAvx512Bytes, .realBytes = 8, .complex = false, .least = {8, 8, 7, 4}},
    {.vectorBytes = kAvx512Bytes, .realBytes = 8, .complex = true, .least = {8, 8, 8, 5}},
};

constexpr bool isComplex(Kind kind) { return kind == Kind::Forward || kind == Kind::Inverse; }

// Inlined everywhere: what files for different processors share must have no code of its own.
template <class R>
[[gnu::always_inline]] constexpr int worthwhileIn(Kind kind, int n, int vectorBytes) {
    const int column = n < 8 ? 0 : n < 16 ? 1 : n < 32 ? 2 : 3;
    const int row = (vectorBytes == kAvx512Bytes ? 4 : 0) + (sizeof(R) == 8 ? 2 : 0) +
                    (isComplex(kind) ? 1 : 0);
    return kWorthwhile[row].least.from[column];
}

// So many contiguous transforms are the single kernels' in any case: no target has kernels that pay
// for fewer than the narrowest vectors do. Kernels for rows take two.
template <class R>
[[gnu::always_inline]] constexpr bool areFewRows(Kind kind, int n, std::size_t count) {
    if (isComplex(kind) && (sizeof(R) == 8 || n % 8 == 0)) return count < 2;
    return count < static_cast<std::size_t>(worthwhileIn<R>(kind, n, kAvx2Bytes));
}

}  // namespace orvgen::batch
