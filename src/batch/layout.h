// SPDX-License-Identifier: MIT
// The way of a block of transforms from an array into vectors and back.
//
// In between, a block stands in a scratch in the first-level cache: slot by slot, a slot being one
// real number of all its transforms. Included by the file of each target, in its namespace: Vectors
// is the target's own.
//
// A block may be incomplete. Its idle lanes then repeat its last transform, so that they raise no
// exception of their own, and nothing is written for them.

// How the transforms of a block lie in an array.
enum class Path : std::uint8_t {
    Direct,         // slots are vectors already: the kernel works on the array itself
    Rows,           // the numbers of a transform are contiguous
    Columns,        // a slot of a block is contiguous
    PairedColumns,  // a pair of a block is contiguous
    Elements,       // anything else
};

template <class R>
Path pathOf(const Array<R>& a, Layout layout) {
    if (isPairs(layout)) {
        if (!a.isInterleaved()) return a.distance == 1 ? Path::Direct : Path::Elements;
        if (a.stride == 2) return Path::Rows;
        return a.distance == 2 ? Path::PairedColumns : Path::Elements;
    }
    if (a.stride == 1) return Path::Rows;
    if (a.distance != 1) return Path::Elements;
    return layout == Layout::Real ? Path::Direct : Path::Columns;
}

template <class R>
struct Block {
    static constexpr int lanes = Vectors<R>::lanes;

    std::ptrdiff_t first;  // number of its first transform
    int valid;             // how many of its lanes are transforms

    std::ptrdiff_t transform(int lane) const { return first + (lane < valid ? lane : valid - 1); }
};

// block(b) for one complete block after the other, and for what is left if it is at least
// `worthwhile` transforms. Returns how many transforms are done.
template <class R, class Run>
std::size_t walkBlocks(std::size_t count, int worthwhile, const Run& block) {
    constexpr std::size_t lanes = Vectors<R>::lanes;
    std::size_t done = 0;
    for (; count - done >= lanes; done += lanes)
        block(Block<R>{static_cast<std::ptrdiff_t>(done), Vectors<R>::lanes});
    const auto left = static_cast<int>(count - done);
    if (left < worthwhile) return done;
    block(Block<R>{static_cast<std::ptrdiff_t>(done), left});
    return count;
}

// Numbers of contiguous transforms, 16 bytes of each at a time: a transpose brings together what
// belongs to one slot. The last 16 bytes overlap those before them. Loops over lanes are written
// out by unroll, so that the vectors stay in registers.
template <class R>
void gatherRows(const Array<const R>& a, const Block<R>& block, int slots, R* to) {
    using Vs = Vectors<R>;
    const R* row[Vs::lanes];
    unroll<Vs::lanes>(
        [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA { row[l] = a.re + block.transform(l) * a.distance; });
    for (int at = 0; at < slots; at += Vs::columns) {
        const int j = at + Vs::columns <= slots ? at : slots - Vs::columns;
        typename Vs::V v[Vs::columns];
        unroll<Vs::columns>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
            v[c] = Vs::loadParts([&](auto part) ORVGEN_DCT4_INLINE_LAMBDA {
                return row[c + part * Vs::columns] + j;
            });
        });
        Vs::transposeParts(v);
        unroll<Vs::columns>(
            [&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { Vs::store(to + (j + c) * Vs::lanes, v[c]); });
    }
}

template <class R, bool complete>
void scatterRows(const R* from, int slots, const Block<R>& block, const Array<R>& a) {
    using Vs = Vectors<R>;
    R* row[Vs::lanes];
    unroll<Vs::lanes>(
        [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA { row[l] = a.re + block.transform(l) * a.distance; });
    for (int at = 0; at < slots; at += Vs::columns) {
        const int j = at + Vs::columns <= slots ? at : slots - Vs::columns;
        typename Vs::V v[Vs::columns];
        unroll<Vs::columns>(
            [&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = Vs::load(from + (j + c) * Vs::lanes); });
        Vs::transposeParts(v);
        unroll<Vs::lanes>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            if (complete || l < block.valid)
                Vs::storePart(row[l] + j, v[l % Vs::columns], Index<l / Vs::columns>{});
        });
    }
}

// Slots of a complete block, pairs as two slots.
template <class R>
void gatherColumns(const Array<const R>& a, const Block<R>& block, int slots, R* to) {
    using Vs = Vectors<R>;
    const R* from = a.re + block.first * a.distance;
    for (int j = 0; j < slots; ++j) Vs::store(to + j * Vs::lanes, Vs::load(from + j * a.stride));
}
template <class R>
void scatterColumns(const R* from, int slots, const Block<R>& block, const Array<R>& a) {
    using Vs = Vectors<R>;
    R* to = a.re + block.first * a.distance;
    for (int j = 0; j < slots; ++j) Vs::store(to + j * a.stride, Vs::load(from + j * Vs::lanes));
}

template <class R>
void gatherPairedColumns(const Array<const R>& a, const Block<R>& block, int pairs, R* to) {
    using Vs = Vectors<R>;
    const R* from = a.re + block.first * a.distance;
    for (int j = 0; j < pairs; ++j) {
        typename Vs::V re, im;
        Vs::splitPairs(Vs::load(from + j * a.stride), Vs::load(from + j * a.stride + Vs::lanes), re,
                       im);
        Vs::store(to + 2 * j * Vs::lanes, re);
        Vs::store(to + (2 * j + 1) * Vs::lanes, im);
    }
}
template <class R>
void scatterPairedColumns(const R* from, int pairs, const Block<R>& block, const Array<R>& a) {
    using Vs = Vectors<R>;
    R* to = a.re + block.first * a.distance;
    for (int j = 0; j < pairs; ++j) {
        typename Vs::V low, high;
        Vs::joinPairs(Vs::load(from + 2 * j * Vs::lanes), Vs::load(from + (2 * j + 1) * Vs::lanes),
                      low, high);
        Vs::store(to + j * a.stride, low);
        Vs::store(to + j * a.stride + Vs::lanes, high);
    }
}

// Element by element; `step` is from slot to slot in the scratch.
template <class R>
void gatherElements(const R* p, const Array<const R>& a, const Block<R>& block, int elements, R* to,
                    int step) {
    for (int l = 0; l < Block<R>::lanes; ++l) {
        const R* from = p + block.transform(l) * a.distance;
        for (int j = 0; j < elements; ++j) to[j * step + l] = from[j * a.stride];
    }
}
template <class R>
void scatterElements(const R* from, int step, const Block<R>& block, int elements,
                     const Array<R>& a, R* p) {
    for (int l = 0; l < block.valid; ++l) {
        R* to = p + (block.first + l) * a.distance;
        for (int j = 0; j < elements; ++j) to[j * a.stride] = from[j * step + l];
    }
}

// The path that a block can take: vectors of an incomplete one would touch what is not the batch's,
// and fewer than 16 bytes of a row are no part.
template <class R>
Path pathOf(Path path, const Block<R>& block, int slots) {
    if (path == Path::Rows) return slots < Vectors<R>::columns ? Path::Elements : path;
    return block.valid < Block<R>::lanes ? Path::Elements : path;
}

template <class R>
void gather(Path path, const Array<const R>& a, Layout layout, int n, const Block<R>& block,
            R* to) {
    constexpr int lanes = Block<R>::lanes;
    const bool paired = isPairs(layout);
    const int elements = elementsOf(layout, n);
    const int slots = paired ? 2 * elements : elements;
    switch (pathOf(path, block, slots)) {
        case Path::Rows:
            return gatherRows(a, block, slots, to);
        case Path::Columns:
            return gatherColumns(a, block, slots, to);
        case Path::PairedColumns:
            return gatherPairedColumns(a, block, elements, to);
        default:
            break;
    }
    if (!paired) return gatherElements(a.re, a, block, elements, to, lanes);
    gatherElements(a.re, a, block, elements, to, 2 * lanes);
    gatherElements(a.im, a, block, elements, to + lanes, 2 * lanes);
}

template <class R>
void scatter(Path path, const R* from, Layout layout, int n, const Block<R>& block,
             const Array<R>& a) {
    constexpr int lanes = Block<R>::lanes;
    const bool paired = isPairs(layout);
    const int elements = elementsOf(layout, n);
    const int slots = paired ? 2 * elements : elements;
    switch (pathOf(path, block, slots)) {
        case Path::Rows:
            return block.valid == lanes ? scatterRows<R, true>(from, slots, block, a)
                                        : scatterRows<R, false>(from, slots, block, a);
        case Path::Columns:
            return scatterColumns(from, slots, block, a);
        case Path::PairedColumns:
            return scatterPairedColumns(from, elements, block, a);
        default:
            break;
    }
    if (!paired) return scatterElements(from, lanes, block, elements, a, a.re);
    scatterElements(from, 2 * lanes, block, elements, a, a.re);
    scatterElements(from + lanes, 2 * lanes, block, elements, a, a.im);
}
