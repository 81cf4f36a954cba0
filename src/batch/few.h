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

template <class R>
[[gnu::always_inline]] constexpr int rowOf(Kind kind, int vectorBytes) {
    return (vectorBytes == kAvx512Bytes ? 4 : 0) + (sizeof(R) == 8 ? 2 : 0) +
           (isComplex(kind) ? 1 : 0);
}

// Inlined everywhere: what files for different processors share must have no code of its own.
template <class R>
[[gnu::always_inline]] constexpr int worthwhileIn(Kind kind, int n, int vectorBytes) {
    const int column = n < 8 ? 0 : n < 16 ? 1 : n < 32 ? 2 : 3;
    return kWorthwhile[rowOf<R>(kind, vectorBytes)].least.from[column];
}

// From how many rows on a call is faster than the single functions, for 2, 3 .. 20 points: what a
// call through a scratch takes beside its kernel, some 100 cycles, is more than short transforms
// take. In the order of the rows above.
inline constexpr int kLastShortRow = 20;
inline constexpr std::uint8_t kLeastRows[][kLastShortRow - 1] = {
    {18, 18, 18, 16, 16, 8, 16, 7, 8, 7, 7, 7, 7, 7, 6, 5, 5, 5, 5},
    {18, 18, 16, 8, 16, 8, 4, 8, 8, 8, 8, 8, 8, 8, 2, 7, 7, 7, 7},
    {10, 10, 10, 10, 10, 10, 10, 10, 10, 8, 10, 8, 8, 8, 8, 4, 8, 4, 8},
    {6, 6, 8, 6, 6, 4, 6, 2, 4, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2},
    {32, 32, 32, 26, 16, 16, 14, 13, 13, 13, 13, 13, 13, 13, 7, 7, 7, 7, 7},
    {32, 32, 16, 16, 16, 16, 13, 13, 13, 13, 13, 13, 13, 13, 10, 9, 9, 9, 9},
    {18, 18, 18, 16, 18, 16, 16, 16, 16, 8, 16, 8, 8, 8, 7, 7, 7, 7, 7},
    {8, 8, 8, 8, 8, 4, 8, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4},
};

// Whether so many rows of a length that there is are left to the single functions.
template <class R>
[[gnu::always_inline]] constexpr bool areFewRows(Kind kind, int n, std::size_t count,
                                                 int vectorBytes) {
    const auto areBelow = [count](int least) { return count < static_cast<std::size_t>(least); };
    if (n <= kLastShortRow) return areBelow(kLeastRows[rowOf<R>(kind, vectorBytes)][n - 2]);
    // Kernels for rows take one in 16 bytes.
    if (isComplex(kind) && (sizeof(R) == 8 || n % 8 == 0)) return areBelow(vectorBytes / 16);
    return areBelow(worthwhileIn<R>(kind, n, vectorBytes));
}

}  // namespace orvgen::batch
