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

template <class R>
PairsForm<R> pairsFormOf(const Task<R>& task) {
    constexpr int lanes = Vectors<R>::lanes, bytes = PairsForm<R>::vectorBytes;
    constexpr int shift = std::countr_zero(unsigned{lanes});
    const bool src = isPairsArray(task.src, task.srcLayout);
    const bool dst = isPairsArray(task.dst, task.dstLayout);
    if (!src && !dst) return {kernelOf<R>(task.kind, task.n), lanes, shift, bytes, bytes};
    BlockKernel<R>* const kernel = pairsKernelOf<R>(task.kind, task.n);
    // In binary64 one complex element fills 16 bytes, which are the same transform's.
    if (src && dst && sizeof(R) == 8) return {kernel, lanes / 2, shift - 1, bytes, bytes};
    return {kernel, lanes, shift, src ? 2 * bytes : bytes, dst ? 2 * bytes : bytes};
}
