// SPDX-License-Identifier: MIT
// One call of the batch library, in the terms that all targets share: real numbers, places, counts.
//
// Every array is seen as real numbers with a stride and a distance. A complex element is two of
// them, with one pointer for the real and one for the imaginary parts, so that interleaved and
// split arrays differ in nothing else.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/families.h"
#include "orvgen_batch.h"

namespace orvgen::batch {

constexpr bool isPairs(Layout layout) { return layout == Layout::Complex || layout == Layout::Ccs; }

constexpr bool isPacked(Layout layout) { return layout == Layout::Pack || layout == Layout::Perm; }

// Elements, or pairs, that the layout has for N points.
constexpr int elementsOf(Layout layout, int n) { return layout == Layout::Ccs ? n / 2 + 1 : n; }

template <class R>
struct Array {
    R* re;
    R* im;                            // of pairs; null otherwise
    std::ptrdiff_t stride, distance;  // in real numbers

    bool isInterleaved() const { return im == re + 1; }
};

// The function of orvgen.h for one transform of contiguous elements.
template <class R>
using Single = OrvStatus(const R* src, R* dst, std::int32_t length, std::int32_t flag);

// A kernel on a block of transforms, one in each lane. Element j of all of them is one vector, at
// srcRe + j * srcStep bytes; so are the imaginary parts at srcIm, and the results at dstRe and
// dstIm. Bins are those of CCS, whose imaginary parts that are always zero are left alone. Steps
// are in bytes. Source and destination may be the same if their steps are, or else lie apart. The
// same is done for `blocks` blocks, at least one, of which each begins srcBlock and dstBlock bytes
// behind the one before.
template <class R>
using BlockKernel = void(const R* srcRe, const R* srcIm, std::ptrdiff_t srcStep, R* dstRe, R* dstIm,
                         std::ptrdiff_t dstStep, std::int32_t scale, std::size_t blocks,
                         std::ptrdiff_t srcBlock, std::ptrdiff_t dstBlock);

// A kernel on rows of interleaved complex elements, as many at once as a vector has parts of 16
// bytes, one in each: `blocks` times, at least once, so many rows. Distances are in bytes. Source
// and destination may be the same if their distances are, or else lie apart.
template <class R>
using RowsKernel = void(const R* src, std::ptrdiff_t srcDistance, R* dst,
                        std::ptrdiff_t dstDistance, std::int32_t scale, std::size_t blocks);

// The scales of a kernel's pool, in their order there.
enum Scale : std::int32_t { scaleNone, scaleBySqrtN, scaleByN };

// The kinds of block kernels; the formats of a half spectrum share one, but for the lengths at
// which the inverse from CCS sums in an order of its own.
enum class Kind : std::uint8_t {
    Forward,
    Inverse,
    RealForward,
    InverseFromCcs,
    InverseFromPack,
    Hartley
};

template <class R>
struct Task {
    Kind kind;
    int n;
    Layout srcLayout, dstLayout;
    bool readsBehind;  // the single kernel of this length reads behind src
    Array<const R> src;
    Array<R> dst;
    std::size_t count;
    std::int32_t flag;
    Scale scale;
    Single<R>* single;
};

template <class R>
struct WhtTask {
    int order;
    Array<const R> src;
    Array<R> dst;
    std::size_t count;
    std::int32_t flag;
    Scale scale;
};

template <class R>
struct Dct4Task {
    int n;
    Array<const R> src;
    Array<R> dst;
    std::size_t count;
};

}  // namespace orvgen::batch
