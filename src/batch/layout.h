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
        if (!a.isInterleaved()) {
            if (a.distance == 1) return Path::Direct;
            return a.stride == 1 ? Path::Rows : Path::Elements;
        }
        if (a.stride == 2) return Path::Rows;
        return a.distance == 2 ? Path::PairedColumns : Path::Elements;
    }
    if (a.stride == 1) return Path::Rows;
    if (a.distance != 1) return Path::Elements;
    return layout == Layout::Real ? Path::Direct : Path::Columns;
}

// One side of a call: how its transforms lie, and how much of it there is.
struct Form {
    template <class R>
    Form(const Array<R>& a, Layout layout, int n)
        : path(pathOf(a, layout)),
          paired(isPairs(layout)),
          apart(paired && !a.isInterleaved()),
          elements(elementsOf(layout, n)),
          slots(paired ? 2 * elements : elements) {}

    Path path;
    bool paired;
    // Real and imaginary parts are arrays of their own: in the scratch too, one behind the other.
    bool apart;
    int elements, slots;  // of one transform
    // The lanes are the transforms in their order; where both sides are columns of pairs, they need
    // not be.
    bool inOrder = true;
};

template <class R>
struct Block {
    static constexpr int lanes = Vectors<R>::lanes;

    std::ptrdiff_t first;  // number of its first transform
    int valid;             // how many of its lanes are transforms

    std::ptrdiff_t transform(int lane) const { return first + (lane < valid ? lane : valid - 1); }
};

// Some blocks that follow each other; an incomplete one stands alone.
template <class R>
struct Group {
    std::ptrdiff_t first;  // number of its first transform
    int blocks;
    int valid;

    bool isComplete() const { return valid == Vectors<R>::lanes; }
    Block<R> block(int i) const { return {first + i * Vectors<R>::lanes, valid}; }
};

// run(group) for all complete blocks, at most `most` at a time, and for what is left if it is at
// least `worthwhile` transforms. Returns how many transforms are done.
template <class R, class Run>
std::size_t walkGroups(std::size_t count, int worthwhile, std::size_t most, const Run& run) {
    constexpr std::size_t lanes = Vectors<R>::lanes;
    std::size_t done = 0;
    for (std::size_t blocks = count / lanes; blocks > 0;) {
        const std::size_t now = blocks < most ? blocks : most;
        run(Group<R>{static_cast<std::ptrdiff_t>(done), static_cast<int>(now), lanes});
        done += now * lanes;
        blocks -= now;
    }
    const auto left = static_cast<int>(count - done);
    if (left < worthwhile) return done;
    run(Group<R>{static_cast<std::ptrdiff_t>(done), 1, left});
    return count;
}

// chunk(Index<columns>, at) for columns 0 to slots - 1 of rows: as many at a time as a vector has
// lanes, then fewer. The last ones may overlap those before them.
template <class R, int columns, class Chunk>
ORVGEN_DCT4_INLINE void overRest(int slots, int at, const Chunk& chunk) {
    if (slots - at >= columns) {
        chunk(Index<columns>{}, at);
        at += columns;
    }
    const int left = slots - at;
    if (left == 0) return;
    if ((2 * left > columns || columns == 2) && slots >= columns)
        return chunk(Index<columns>{}, slots - columns);
    if constexpr (columns > 2) overRest<R, columns / 2>(slots, at, chunk);
}
template <class R, class Chunk>
ORVGEN_DCT4_INLINE void overColumns(int slots, const Chunk& chunk) {
    constexpr int lanes = Vectors<R>::lanes;
    int at = 0;
    for (; at + lanes <= slots; at += lanes) chunk(Index<lanes>{}, at);
    overRest<R, lanes>(slots, at, chunk);
}

// Numbers of contiguous transforms, a square of a vector's lanes at a time: a transpose brings
// together what belongs to one slot. Block i of the group stands at to + i * step. Loops over lanes
// are written out by unroll, so that the vectors stay in registers; the loop over blocks is the
// inner one, as rows may be short.
template <class R, bool complete>
void gatherRows(const R* p, std::ptrdiff_t distance, const Group<R>& group, int slots, R* to,
                std::ptrdiff_t step) {
    using Vs = Vectors<R>;
    const R* const first = p + group.first * distance;
    overColumns<R>(slots, [&](auto columns, int at) ORVGEN_DCT4_INLINE_LAMBDA {
        const R* from = first + at;
        R* out = to + at * Vs::lanes;
        for (int i = 0; i < group.blocks; ++i, from += Vs::lanes * distance, out += step)
            Vs::toSlots(
                columns,
                [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
                    const int lane = complete || l < group.valid ? l : group.valid - 1;
                    return from + lane * distance;
                },
                out);
    });
}

template <class R, bool complete>
void scatterRows(const R* from, std::ptrdiff_t step, int slots, const Group<R>& group, R* p,
                 std::ptrdiff_t distance) {
    using Vs = Vectors<R>;
    R* const first = p + group.first * distance;
    overColumns<R>(slots, [&](auto columns, int at) ORVGEN_DCT4_INLINE_LAMBDA {
        const R* in = from + at * Vs::lanes;
        R* to = first + at;
        for (int i = 0; i < group.blocks; ++i, in += step, to += Vs::lanes * distance)
            Vs::fromSlots(columns, in, [&](auto l, const auto& write) ORVGEN_DCT4_INLINE_LAMBDA {
                if (complete || l < group.valid) write(to + l * distance);
            });
    });
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

template <class R, bool inOrder>
void gatherPairedColumns(const Array<const R>& a, const Block<R>& block, int pairs, R* to) {
    using Vs = Vectors<R>;
    const R* from = a.re + block.first * a.distance;
    for (int j = 0; j < pairs; ++j) {
        typename Vs::V re, im;
        const auto low = Vs::load(from + j * a.stride);
        const auto high = Vs::load(from + j * a.stride + Vs::lanes);
        if constexpr (inOrder)
            Vs::splitPairs(low, high, re, im);
        else
            Vs::splitPairsInAnyOrder(low, high, re, im);
        Vs::store(to + 2 * j * Vs::lanes, re);
        Vs::store(to + (2 * j + 1) * Vs::lanes, im);
    }
}
template <class R, bool inOrder>
void scatterPairedColumns(const R* from, int pairs, const Block<R>& block, const Array<R>& a) {
    using Vs = Vectors<R>;
    R* to = a.re + block.first * a.distance;
    for (int j = 0; j < pairs; ++j) {
        typename Vs::V low, high;
        const auto re = Vs::load(from + 2 * j * Vs::lanes);
        const auto im = Vs::load(from + (2 * j + 1) * Vs::lanes);
        if constexpr (inOrder)
            Vs::joinPairs(re, im, low, high);
        else
            Vs::joinPairsInAnyOrder(re, im, low, high);
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

// The same of complete blocks, vector by vector: a store of one number after the other would make
// the kernel wait for them when it loads vectors. Not inlined: so many addresses leave no registers
// to whoever calls.
template <class R>
[[gnu::noinline]] void gatherNumbers(const R* p, const Array<const R>& a, const Block<R>& block,
                                     int elements, R* to, int step) {
    using Vs = Vectors<R>;
    const R* from = p + block.first * a.distance;
    for (int j = 0; j < elements; ++j, from += a.stride, to += step)
        Vs::store(to, Vs::gatherNumbers(
                          [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA { return from + l * a.distance; }));
}
template <class R>
[[gnu::noinline]] void scatterNumbers(const R* from, int step, const Block<R>& block, int elements,
                                      const Array<R>& a, R* p) {
    using Vs = Vectors<R>;
    R* to = p + block.first * a.distance;
    for (int j = 0; j < elements; ++j, to += a.stride, from += step)
        Vs::scatterNumbers(Vs::load(from),
                           [&](auto l, const auto& write)
                               ORVGEN_DCT4_INLINE_LAMBDA { write(to + l * a.distance); });
}

// Interleaved pairs of complete blocks, as a whole. The order in which they stand in two vectors is
// the one from which shuffles within 16 bytes put the numbers of all transforms in order.
template <class R, bool second>
constexpr int transformOfPair(int pair) {
    constexpr int some = 8 / sizeof(R);  // pairs in 16 bytes
    return pair / some * 2 * some + pair % some + (second ? some : 0);
}
template <class R>
[[gnu::noinline]] void gatherPairs(const Array<const R>& a, const Block<R>& block, int pairs,
                                   R* to) {
    using Vs = Vectors<R>;
    const R* from = a.re + block.first * a.distance;
    const auto half = [&](auto second) ORVGEN_DCT4_INLINE_LAMBDA {
        return Vs::gatherPairs([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            return from + transformOfPair<R, second>(l) * a.distance;
        });
    };
    for (int j = 0; j < pairs; ++j, from += a.stride, to += 2 * Vs::lanes) {
        typename Vs::V re, im;
        Vs::splitPairsInAnyOrder(half(Index<0>{}), half(Index<1>{}), re, im);
        Vs::store(to, re);
        Vs::store(to + Vs::lanes, im);
    }
}
template <class R>
[[gnu::noinline]] void scatterPairs(const R* from, int pairs, const Block<R>& block,
                                    const Array<R>& a) {
    using Vs = Vectors<R>;
    R* to = a.re + block.first * a.distance;
    const auto half = [&](typename Vs::V v, auto second) ORVGEN_DCT4_INLINE_LAMBDA {
        Vs::scatterPairs(v, [&](auto l, const auto& write) ORVGEN_DCT4_INLINE_LAMBDA {
            write(to + transformOfPair<R, second>(l) * a.distance);
        });
    };
    for (int j = 0; j < pairs; ++j, to += a.stride, from += 2 * Vs::lanes) {
        typename Vs::V low, high;
        Vs::joinPairsInAnyOrder(Vs::load(from), Vs::load(from + Vs::lanes), low, high);
        half(low, Index<0>{});
        half(high, Index<1>{});
    }
}

// Elements anywhere: numbers, pairs, or pairs that are apart.
template <class R>
[[gnu::noinline]] void gatherAnywhere(const Array<const R>& a, const Form& form,
                                      const Block<R>& block, R* to) {
    constexpr int lanes = Vectors<R>::lanes;
    const int n = form.elements;
    if (block.valid < lanes) {
        const int step = form.paired && !form.apart ? 2 * lanes : lanes;
        gatherElements(a.re, a, block, n, to, step);
        if (form.paired) gatherElements(a.im, a, block, n, to + (form.apart ? n : 1) * lanes, step);
        return;
    }
    if (form.paired && !form.apart) return gatherPairs(a, block, n, to);
    gatherNumbers(a.re, a, block, n, to, lanes);
    if (form.apart) gatherNumbers(a.im, a, block, n, to + n * lanes, lanes);
}
template <class R>
[[gnu::noinline]] void scatterAnywhere(const R* from, const Form& form, const Block<R>& block,
                                       const Array<R>& a) {
    constexpr int lanes = Vectors<R>::lanes;
    const int n = form.elements;
    if (block.valid < lanes) {
        const int step = form.paired && !form.apart ? 2 * lanes : lanes;
        scatterElements(from, step, block, n, a, a.re);
        if (form.paired)
            scatterElements(from + (form.apart ? n : 1) * lanes, step, block, n, a, a.im);
        return;
    }
    if (form.paired && !form.apart) return scatterPairs(from, n, block, a);
    scatterNumbers(from, lanes, block, n, a, a.re);
    if (form.apart) scatterNumbers(from + n * lanes, lanes, block, n, a, a.im);
}

// Block i of the group stands at to + i * step.
template <class R>
void gather(const Array<const R>& a, const Form& form, const Group<R>& group, R* to,
            std::ptrdiff_t step) {
    constexpr int lanes = Vectors<R>::lanes;
    if (form.path == Path::Rows) {
        const auto rows = [&](const R* p, int slots, R* out) {
            group.isComplete() ? gatherRows<R, true>(p, a.distance, group, slots, out, step)
                               : gatherRows<R, false>(p, a.distance, group, slots, out, step);
        };
        if (!form.apart) return rows(a.re, form.slots, to);
        rows(a.re, form.elements, to);
        return rows(a.im, form.elements, to + form.elements * lanes);
    }
    for (int i = 0; i < group.blocks; ++i, to += step) {
        const Block<R> block = group.block(i);
        // Vectors of an incomplete block would touch what is not the batch's.
        if (group.isComplete() && form.path == Path::Columns) {
            gatherColumns(a, block, form.slots, to);
        } else if (group.isComplete() && form.path == Path::PairedColumns) {
            form.inOrder ? gatherPairedColumns<R, true>(a, block, form.elements, to)
                         : gatherPairedColumns<R, false>(a, block, form.elements, to);
        } else {
            gatherAnywhere(a, form, block, to);
        }
    }
}

template <class R>
void scatter(const R* from, std::ptrdiff_t step, const Form& form, const Group<R>& group,
             const Array<R>& a) {
    constexpr int lanes = Vectors<R>::lanes;
    if (form.path == Path::Rows) {
        const auto rows = [&](const R* in, int slots, R* p) {
            group.isComplete() ? scatterRows<R, true>(in, step, slots, group, p, a.distance)
                               : scatterRows<R, false>(in, step, slots, group, p, a.distance);
        };
        if (!form.apart) return rows(from, form.slots, a.re);
        rows(from, form.elements, a.re);
        return rows(from + form.elements * lanes, form.elements, a.im);
    }
    for (int i = 0; i < group.blocks; ++i, from += step) {
        const Block<R> block = group.block(i);
        if (group.isComplete() && form.path == Path::Columns) {
            scatterColumns(from, form.slots, block, a);
        } else if (group.isComplete() && form.path == Path::PairedColumns) {
            form.inOrder ? scatterPairedColumns<R, true>(from, form.elements, block, a)
                         : scatterPairedColumns<R, false>(from, form.elements, block, a);
        } else {
            scatterAnywhere(from, form, block, a);
        }
    }
}
