// SPDX-License-Identifier: MIT
// The walk over a batch, a block of as many transforms as a vector has lanes at a time. Included by
// the file of each target, in its namespace, behind layout.h; kernelOf is the target's own.

// The longest transform in slots: 64 complex elements, or 33 bins.
constexpr int kSlots = 128;

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
constexpr bool isPacked(Layout layout) { return layout == Layout::Pack || layout == Layout::Perm; }
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
    } else if (layout == Layout::Pack || layout == Layout::Perm) {
        copySlot(slots, 0, 1);
    } else if (layout == Layout::Ccs) {
        clearSlot(slots, 1);
        if (n % 2 == 0) clearSlot(slots, n + 1);
    }
}

// From how many transforms on a block pays, against the single kernels one after another.
template <class R>
constexpr int worthwhile(Kind kind) {
    const bool complex = kind == Kind::Forward || kind == Kind::Inverse;
    return (complex ? 5 : 3) * Vectors<R>::lanes / 8 + 1;
}

template <class R>
class Blocks {
  public:
    explicit Blocks(const Task<R>& task)
        : task_(task),
          kernel_(kernelOf<R>(task.kind, task.n)),
          srcPath_(pathOf(task.src, task.srcLayout)),
          dstPath_(pathOf(task.dst, task.dstLayout)) {}

    std::size_t run() {
        return walkBlocks<R>(task_.count, worthwhile<R>(task_.kind),
                             [&](const Block<R>& b) { block(b); });
    }

  private:
    static constexpr int lanes = Vectors<R>::lanes;

    // Where a block begins; null stays null.
    template <class T>
    static T* place(T* p, const Array<T>& a, const Block<R>& b) {
        return p == nullptr ? nullptr : p + b.first * a.distance;
    }

    void block(const Block<R>& b) {
        alignas(64) R in[kSlots * lanes], out[kSlots * lanes];
        const bool complete = b.valid == lanes;
        constexpr std::ptrdiff_t slot = lanes * sizeof(R);

        const R *srcRe = in, *srcIm = in + lanes;
        std::ptrdiff_t srcStep = task_.srcLayout == Layout::Real ? slot : 2 * slot;
        if (srcPath_ == Path::Direct && complete) {
            srcRe = place(task_.src.re, task_.src, b);
            srcIm = place(task_.src.im, task_.src, b);
            srcStep = task_.src.stride * static_cast<std::ptrdiff_t>(sizeof(R));
        } else {
            const int first = firstSlot(task_.srcLayout, task_.n);
            gather(srcPath_, task_.src, task_.srcLayout, task_.n, b, in + first * lanes);
            unpackSlots(in, task_.srcLayout, task_.n);
        }

        if (dstPath_ == Path::Direct && complete) {
            kernel_(srcRe, srcIm, srcStep, place(task_.dst.re, task_.dst, b),
                    place(task_.dst.im, task_.dst, b),
                    task_.dst.stride * static_cast<std::ptrdiff_t>(sizeof(R)), task_.scale);
            return;
        }
        // Where both sides have the same slots, one scratch is less memory to run through.
        R* results = task_.srcLayout == task_.dstLayout ? in : out;
        kernel_(srcRe, srcIm, srcStep, results, results + lanes,
                task_.dstLayout == Layout::Real ? slot : 2 * slot, task_.scale);
        packSlots(results, task_.dstLayout, task_.n);
        scatter(dstPath_, results + firstSlot(task_.dstLayout, task_.n) * lanes, task_.dstLayout,
                task_.n, b, task_.dst);
    }

    const Task<R>& task_;
    BlockKernel<R>* kernel_;
    Path srcPath_, dstPath_;
};
