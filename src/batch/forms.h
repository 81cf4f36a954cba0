// SPDX-License-Identifier: MIT
// Which kernel takes transforms that stand side by side, and how many at once. Included by the file
// of each target, in its namespace, behind kernels.h.

// What of two arrays a kernel takes at once, and how far apart it finds it.
template <class R>
struct PairsForm {
    static constexpr int vectorBytes = Vectors<R>::lanes * sizeof(R);

    BlockKernel<R>* kernel;
    int width, shift;         // transforms of a block, and their binary logarithm
    std::ptrdiff_t src, dst;  // bytes of one element of a block
};

template <class R>
bool isSideBySide(const Array<R>& a, Layout layout) {
    if (layout == Layout::Real) return a.distance == 1;
    return isPairs(layout) && a.distance == (a.isInterleaved() ? 2 : 1);
}
template <class R>
bool isPairsArray(const Array<R>& a, Layout layout) {
    return isPairs(layout) && a.isInterleaved();
}

// Which sides are of pairs.
struct PairSides {
    bool src = false, dst = false;
};

// How many transforms a kernel takes, and what it finds of each element.
template <class R>
constexpr PairsForm<R> formOf(BlockKernel<R>* kernel, PairSides pairs) {
    constexpr int lanes = Vectors<R>::lanes, bytes = PairsForm<R>::vectorBytes;
    constexpr int shift = std::countr_zero(unsigned{lanes});
    // In binary64 one complex element fills 16 bytes, which are the same transform's.
    if (pairs.src && pairs.dst && sizeof(R) == 8)
        return {kernel, lanes / 2, shift - 1, bytes, bytes};
    return {kernel, lanes, shift, pairs.src ? 2 * bytes : bytes, pairs.dst ? 2 * bytes : bytes};
}

template <class R>
PairsForm<R> pairsFormOf(const Task<R>& task) {
    const PairSides pairs{.src = isPairsArray(task.src, task.srcLayout),
                          .dst = isPairsArray(task.dst, task.dstLayout)};
    return formOf<R>(pairs.src || pairs.dst ? pairsKernelOf<R>(task.kind, task.n)
                                            : kernelOf<R>(task.kind, task.n),
                     pairs);
}

// The same for calls that come without a task.
template <class R>
constexpr Direct<R> directOf(BlockKernel<R>* const* kernels, PairSides pairs) {
    const PairsForm<R> form = formOf<R>(nullptr, pairs);
    return {kernels, form.shift, Vectors<R>::lanes, form.src, form.dst};
}
template <class R>
consteval std::array<Direct<R>, directForms> directs() {
    using Ks = Kernels<R>;
    std::array<Direct<R>, directForms> of{};
    of[directForward] = directOf<R>(Ks::pairs.forward, {.src = true, .dst = true});
    of[directInverse] = directOf<R>(Ks::pairs.inverse, {.src = true, .dst = true});
    of[directRealForward] = directOf<R>(Ks::pairs.realForward, {.dst = true});
    of[directInverseFromCcs] = directOf<R>(Ks::pairs.realInverse, {.src = true});
    of[directHartley] = directOf<R>(Ks::blocks.hartley, {});
    of[directSplitForward] = directOf<R>(Ks::blocks.forward, {});
    of[directSplitInverse] = directOf<R>(Ks::blocks.inverse, {});
    return of;
}
