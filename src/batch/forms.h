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

// How many transforms a kernel takes, and what it finds of each element, where a side is of pairs.
template <class R>
constexpr PairsForm<R> formOf(BlockKernel<R>* kernel, bool srcPairs, bool dstPairs) {
    constexpr int lanes = Vectors<R>::lanes, bytes = PairsForm<R>::vectorBytes;
    constexpr int shift = std::countr_zero(unsigned{lanes});
    // In binary64 one complex element fills 16 bytes, which are the same transform's.
    if (srcPairs && dstPairs && sizeof(R) == 8) return {kernel, lanes / 2, shift - 1, bytes, bytes};
    return {kernel, lanes, shift, srcPairs ? 2 * bytes : bytes, dstPairs ? 2 * bytes : bytes};
}

template <class R>
PairsForm<R> pairsFormOf(const Task<R>& task) {
    const bool src = isPairsArray(task.src, task.srcLayout);
    const bool dst = isPairsArray(task.dst, task.dstLayout);
    return formOf<R>(
        src || dst ? pairsKernelOf<R>(task.kind, task.n) : kernelOf<R>(task.kind, task.n), src,
        dst);
}

// The same for calls that come without a task.
template <class R>
constexpr Direct<R> directOf(BlockKernel<R>* const* kernels, bool srcPairs, bool dstPairs) {
    const PairsForm<R> form = formOf<R>(nullptr, srcPairs, dstPairs);
    return {kernels, form.shift, Vectors<R>::lanes, form.src, form.dst};
}
template <class R>
consteval std::array<Direct<R>, directForms> directs() {
    using Ks = Kernels<R>;
    std::array<Direct<R>, directForms> of{};
    of[directForward] = directOf<R>(Ks::forwardPairs, true, true);
    of[directInverse] = directOf<R>(Ks::inversePairs, true, true);
    of[directRealForward] = directOf<R>(Ks::realForwardPairs, false, true);
    of[directInverseFromCcs] = directOf<R>(Ks::realInversePairs, true, false);
    of[directHartley] = directOf<R>(Ks::hartley, false, false);
    of[directSplitForward] = directOf<R>(Ks::forward, false, false);
    of[directSplitInverse] = directOf<R>(Ks::inverse, false, false);
    return of;
}
