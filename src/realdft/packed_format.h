// SPDX-License-Identifier: MIT
// The three packed layouts of a half spectrum: which term stands where.
//
// A real sequence of length N has the bins 0..N/2; R[k] + i I[k] is bin k. DC (and, for even N, the
// Nyquist bin H = N/2) is real. M = floor((N-1)/2) bins have both parts.
//
//   term              CCS       Pack     Perm, even N   Perm, odd N
//   R[0]              0         0        0              0
//   I[0]              1 (zero)  -        -              -
//   R[k], 1<=k<=M     2k        2k-1     2k             2k-1
//   I[k], 1<=k<=M     2k+1      2k       2k+1           2k
//   R[H]              N         N-1      1              -
//   I[H]              N+1 (zero) -       -              -
//   elements          N+2, N+1  N        N              N
#pragma once

#include <array>
#include <vector>

#include "frame/families.h"

namespace orvgen::realdft {

using PackedFormat = Layout;  // one of these three

inline constexpr std::array<PackedFormat, 3> kPackedFormats = {
    PackedFormat::Ccs, PackedFormat::Pack, PackedFormat::Perm};

constexpr const char* formatName(PackedFormat format) {
    switch (format) {
        case PackedFormat::Ccs:
            return "CCS";
        case PackedFormat::Pack:
            return "Pack";
        default:
            return "Perm";
    }
}

// Bins that carry both a real and an imaginary part: 1..fullBins(n).
constexpr int fullBins(int n) { return (n - 1) / 2; }
constexpr bool hasNyquist(int n) { return n % 2 == 0; }

// Index of the real part of bin k, 0 <= k <= n/2.
constexpr int realPosition(PackedFormat format, int n, int k) {
    if (k == 0) return 0;
    const bool isNyquist = 2 * k == n;
    switch (format) {
        case PackedFormat::Ccs:
            return 2 * k;
        case PackedFormat::Pack:
            return 2 * k - 1;
        default:
            return isNyquist ? 1 : hasNyquist(n) ? 2 * k : 2 * k - 1;
    }
}

// Index of the imaginary part of bin k, 1 <= k <= fullBins(n).
constexpr int imaginaryPosition(PackedFormat format, int n, int k) {
    return realPosition(format, n, k) + 1;
}

// Elements of the array.
constexpr int elementCount(PackedFormat format, int n) { return realsOf(format, n); }

// The elements that are stored as +0.0 and never read: the imaginary parts of the real bins in CCS.
inline std::vector<int> zeroPositions(PackedFormat format, int n) {
    if (format != PackedFormat::Ccs) return {};
    if (!hasNyquist(n)) return {1};
    return {1, n + 1};
}

}  // namespace orvgen::realdft
