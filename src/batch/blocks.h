// SPDX-License-Identifier: MIT
// The walk over a batch, in blocks of as many transforms as a vector has lanes. Included by the
// file of each target, in its namespace, behind layout.h; kernelOf is the target's own.

// The longest transform in slots: 64 complex elements, or 33 bins.
constexpr int kSlots = 128;
// Short blocks pass through the scratch in groups that take no more of it than this, so that what a
// block costs beside its work is paid once for many.
constexpr int kGroupBytes = 4096;

template <class R>
void copySlot(R* slots, int from, int to) {
    Vectors<R>::store(slots + to * Vectors<R>::lanes,
                      Vectors<R>::load(slots + from * Vectors<R>::lanes));
}
template <class R>
void clearSlot(R* slots, int slot) {
    Vectors<R>::store(slots + slot * Vectors<R>::lanes, Vectors<R>::zero());
}

// The half spectrum stands in the scratch as CCS has it: R0 0 R1 I1 .. R[N/2] 0. Pack leaves out
// the first zero, Perm puts the last bin in its place; behind the last bin both end.
constexpr bool takesLastBin(Layout layout, int n) { return layout == Layout::Perm && n % 2 == 0; }
// The slot of the first number of a packed format.
constexpr int firstSlot(Layout layout, int n) {
    return isPacked(layout) && !takesLastBin(layout, n) ? 1 : 0;
}

template <class R>
void unpackSlots(R* slots, Layout layout, int n) {
    if (!isPacked(layout)) return;
    if (takesLastBin(layout, n))
        copySlot(slots, 1, n);
    else
        copySlot(slots, 1, 0);
}
template <class R>
void packSlots(R* slots, Layout layout, int n) {
    if (takesLastBin(layout, n)) {
        copySlot(slots, n, 1);
    } else if (isPacked(layout)) {
        copySlot(slots, 0, 1);
    } else if (layout == Layout::Ccs) {
        clearSlot(slots, 1);
        if (n % 2 == 0) clearSlot(slots, n + 1);
    }
}

// From how many transforms on what is left pays as a block with idle lanes.
template <class R>
int worthwhile(Kind kind, int n) {
    return worthwhileIn<R>(kind, n, Vectors<R>::lanes * int{sizeof(R)});
}

template <class R>
bool areComplexRows(const Task<R>& task) {
    return task.srcLayout == Layout::Complex && task.dstLayout == Layout::Complex &&
           task.src.stride == 2 && task.src.isInterleaved() && task.dst.stride == 2 &&
           task.dst.isInterleaved();
}

// Rows of complex elements on both sides, by a kernel of their own if there is one. Returns how
// many are done.
template <class R>
std::size_t runComplexRows(const Task<R>& task, Way way) {
    constexpr std::size_t parts = Vectors<R>::lanes * sizeof(R) / 16;
    RowsKernel<R>* const kernel = rowsKernelOf<R>(task.kind, task.n);
    const std::size_t blocks = task.count / parts;
    if (kernel == nullptr || blocks == 0) return 0;
    if (way == Way::Prefetched) {
        runRowsPrefetched(kernel, task, blocks, parts);
        return blocks * parts;
    }
    constexpr std::ptrdiff_t bytes = sizeof(R);
    kernel(task.src.re, task.src.distance * bytes, task.dst.re, task.dst.distance * bytes,
           task.scale, blocks);
    return blocks * parts;
}

template <class R>
class Blocks {
  public:
    explicit Blocks(const Task<R>& task)
        : task_(task),
          kernel_(kernelOf<R>(task.kind, task.n)),
          src_(task.src, task.srcLayout, task.n),
          dst_(task.dst, task.dstLayout, task.n),
          sameSlots_(task.srcLayout == task.dstLayout && src_.apart == dst_.apart) {
        if (src_.path == Path::PairedColumns && dst_.path == Path::PairedColumns)
            src_.inOrder = dst_.inOrder = false;
        // The half spectrum has a slot or two more in the scratch than packed.
        srcBlock_ = (src_.slots + (isPacked(task.srcLayout) ? 2 : 0)) * kSlotBytes;
        dstBlock_ = (dst_.slots + (isPacked(task.dstLayout) ? 2 : 0)) * kSlotBytes;
    }

    std::size_t run() {
        const bool direct = src_.path == Path::Direct && dst_.path == Path::Direct;
        const std::ptrdiff_t larger = srcBlock_ > dstBlock_ ? srcBlock_ : dstBlock_;
        const std::size_t most = direct                  ? std::numeric_limits<int>::max()
                                 : larger >= kGroupBytes ? 1
                                                         : std::size_t(kGroupBytes / larger);
        return walkGroups<R>(task_.count, worthwhile<R>(task_.kind, task_.n), most,
                             [&](const Group<R>& g) { group(g); });
    }

  private:
    static constexpr int lanes = Vectors<R>::lanes;
    static constexpr std::ptrdiff_t kSlotBytes = lanes * sizeof(R);

    // A side of a kernel's call.
    template <class T>
    struct Side {
        T *re, *im;
        std::ptrdiff_t step, block;  // in bytes
    };
    template <class T>
    static Side<T> inPlace(const Array<T>& a, std::ptrdiff_t first) {
        return {a.re + first, a.im == nullptr ? nullptr : a.im + first,
                a.stride * static_cast<std::ptrdiff_t>(sizeof(R)), kSlotBytes};
    }
    static Side<R> inScratch(R* slots, Layout layout, const Form& form, std::ptrdiff_t block) {
        if (form.apart) return {slots, slots + form.elements * lanes, kSlotBytes, block};
        const bool pairs = layout != Layout::Real;
        return {slots, slots + lanes, pairs ? 2 * kSlotBytes : kSlotBytes, block};
    }

    void group(const Group<R>& g) {
        // The two do not stand a multiple of a page apart: a load would seem to want what a store
        // has just written in the other.
        struct Scratch {
            alignas(64) R in[kSlots * lanes];
            alignas(64) R between[8 * lanes];
            alignas(64) R out[kSlots * lanes];
        } scratch;
        // Where both sides have the same slots, one scratch is less memory to run through.
        R* const results = sameSlots_ ? scratch.in : scratch.out;
        const bool takesSrc = src_.path == Path::Direct && g.isComplete();
        const bool takesDst = dst_.path == Path::Direct && g.isComplete();
        if (!takesSrc) fetch(g, scratch.in);
        Side<const R> src;
        if (takesSrc) {
            src = inPlace(task_.src, g.first);
        } else {
            const Side<R> in = inScratch(scratch.in, task_.srcLayout, src_, srcBlock_);
            src = {in.re, in.im, in.step, in.block};
        }
        const Side<R> dst = takesDst ? inPlace(task_.dst, g.first)
                                     : inScratch(results, task_.dstLayout, dst_, dstBlock_);
        kernel_(src.re, src.im, src.step, dst.re, dst.im, dst.step, task_.scale,
                static_cast<std::size_t>(g.blocks), src.block, dst.block);
        if (!takesDst) bring(results, g);
    }

    static std::ptrdiff_t numbers(std::ptrdiff_t bytes) {
        return bytes / static_cast<std::ptrdiff_t>(sizeof(R));
    }
    void fetch(const Group<R>& g, R* slots) {
        const std::ptrdiff_t step = numbers(srcBlock_);
        gather(task_.src, src_, g, slots + firstSlot(task_.srcLayout, task_.n) * lanes, step);
        for (int i = 0; i < g.blocks; ++i, slots += step)
            unpackSlots(slots, task_.srcLayout, task_.n);
    }
    void bring(R* slots, const Group<R>& g) {
        const std::ptrdiff_t step = numbers(dstBlock_);
        for (int i = 0; i < g.blocks; ++i) packSlots(slots + i * step, task_.dstLayout, task_.n);
        const R* first = slots + firstSlot(task_.dstLayout, task_.n) * lanes;
        scatter(first, step, dst_, g, task_.dst);
    }

    const Task<R>& task_;
    BlockKernel<R>* kernel_;
    Form src_, dst_;
    std::ptrdiff_t srcBlock_ = 0, dstBlock_ = 0;  // bytes of a block in the scratch
    bool sameSlots_;
};
