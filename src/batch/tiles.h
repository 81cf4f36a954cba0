// SPDX-License-Identifier: MIT
// Columns with a large power of two in their stride: the elements of a block stand in few sets of
// the cache, and drive each other out. So pieces of several lines of each row are copied into a
// scratch, where the kernels find them close together. Included by the file of each target, in its
// namespace, behind forms.h.

// Whether the elements of a block, two lines each, crowd the first-level cache of 64 sets.
template <class R>
bool areCrowded(const Array<R>& a, int elements) {
    constexpr std::ptrdiff_t page = 4096;
    constexpr int ways = 12;  // 8 in some
    const std::ptrdiff_t bytes = a.stride * static_cast<std::ptrdiff_t>(sizeof(R));
    const std::ptrdiff_t step = bytes & -bytes;  // the power of two in it
    if (step <= kSpreadBytes) return false;
    const int sets = step >= page ? 1 : static_cast<int>(page / step);
    return 2 * elements > sets * ways;
}
template <class R>
bool isCrowded(const Task<R>& task) {
    const bool isSplit = isPairs(task.srcLayout) && !task.src.isInterleaved();
    return !isSplit && (areCrowded(task.src, elementsOf(task.srcLayout, task.n)) ||
                        areCrowded(task.dst, elementsOf(task.dstLayout, task.n)));
}

// One side of a call.
template <class T>
struct TileSide {
    T* at;
    std::ptrdiff_t stride;  // in numbers
    int elements;
};

template <class R>
[[gnu::always_inline]] inline void copyRow(const R* from, R* to, int numbers) {
    for (int i = 0; i < numbers; i += Vectors<R>::lanes)
        Vectors<R>::store(to + i, Vectors<R>::load(from + i));
}

// Blocks side by side on both sides, by a kernel that takes them where they are.
template <class R>
class Tiles {
  public:
    Tiles(const Task<R>& task, const PairsForm<R>& form) : task_(task), form_(form) {
        const int src = elementsOf(task.srcLayout, task.n),
                  dst = elementsOf(task.dstLayout, task.n);
        const std::ptrdiff_t larger = form.src > form.dst ? form.src : form.dst;
        most_ = static_cast<int>((src > kLongest || dst > kLongest ? kRowBytes / 2 : kRowBytes) /
                                 larger);
        src_ = {task.src.re, task.src.stride, src};
        dst_ = {task.dst.re, task.dst.stride, dst};
    }

    [[gnu::noinline]] void run(std::size_t blocks) {
        for (std::size_t now; blocks > 0; blocks -= now) {
            now = blocks < std::size_t(most_) ? blocks : std::size_t(most_);
            tile(static_cast<int>(now));
        }
    }

  private:
    static constexpr int kRowBytes = 512, kLongest = 32;
    static constexpr int kNumbers = (kLengths.last + 1) * kRowBytes / 2 / sizeof(R);

    void tile(int blocks) {
        alignas(64) R in[kNumbers], out[kNumbers];
        constexpr std::ptrdiff_t bytes = sizeof(R);
        const std::ptrdiff_t srcRow = blocks * form_.src, dstRow = blocks * form_.dst;
        const int srcNumbers = static_cast<int>(srcRow / bytes);
        const int dstNumbers = static_cast<int>(dstRow / bytes);
        // Where both sides are alike, one scratch is less memory to run through.
        R* const results = task_.srcLayout == task_.dstLayout ? in : out;
        const R* from = src_.at;
        R* row = in;
        for (int j = 0; j < src_.elements; ++j, from += src_.stride, row += srcNumbers)
            copyRow(from, row, srcNumbers);
        form_.kernel(in, in + Vectors<R>::lanes, srcRow, results, results + Vectors<R>::lanes,
                     dstRow, task_.scale, static_cast<std::size_t>(blocks), form_.src, form_.dst);
        R* to = dst_.at;
        row = results;
        for (int j = 0; j < dst_.elements; ++j, to += dst_.stride, row += dstNumbers)
            copyRow(row, to, dstNumbers);
        src_.at += srcNumbers;
        dst_.at += dstNumbers;
    }

    const Task<R>& task_;
    PairsForm<R> form_;
    TileSide<const R> src_;
    TileSide<R> dst_;
    int most_;
};
