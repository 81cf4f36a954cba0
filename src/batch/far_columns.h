// SPDX-License-Identifier: MIT
// Long columns of complex elements that no cache holds. A block touches each row once, and rows are
// more than the memory follows by itself; so the next elements of all rows are prefetched before
// each piece. Included by the file of each target, in its namespace, behind far_rows.h and forms.h.

// As measured: up to 31 points, and for real transforms, prefetching gains nothing.
constexpr int kFarColumnsFrom = 40;

template <class R>
bool areFarColumns(const Task<R>& task) {
    if (!isComplex(task.kind) || !task.src.isInterleaved() || task.n < kFarColumnsFrom)
        return false;
    const int sides = task.src.re == task.dst.re ? 1 : 2;
    return task.count > kFarBytes / (static_cast<unsigned>(sides * 2 * task.n) * sizeof(R));
}

// Whole blocks, two lines of each row at a time.
template <class R>
[[gnu::noinline]] void runColumnsPrefetched(const Task<R>& task, const PairsForm<R>& form,
                                            std::size_t blocks) {
    constexpr std::ptrdiff_t pieceBytes = 128, bytes = sizeof(R);
    const std::size_t most = form.src < pieceBytes ? std::size_t(pieceBytes / form.src) : 1;
    const R* src = task.src.re;
    R* dst = task.dst.re;
    for (std::size_t now; blocks > 0; blocks -= now) {
        now = blocks < most ? blocks : most;
        const std::size_t left = blocks - now, next = left < most ? left : most;
        const auto numbersOf = [&](std::size_t some) {
            return static_cast<std::ptrdiff_t>(some) * form.src / bytes;
        };
        const R* const nextSrc = src + numbersOf(now);
        R* const nextDst = dst + numbersOf(now);
        const auto rows = static_cast<std::size_t>(task.n);
        prefetchRows(nextSrc, task.src.stride, rows, static_cast<int>(numbersOf(next)));
        prefetchRows<R>(nextDst, task.dst.stride, rows, static_cast<int>(numbersOf(next)));
        form.kernel(src, src + Vectors<R>::lanes, task.src.stride * bytes, dst,
                    dst + Vectors<R>::lanes, task.dst.stride * bytes, task.scale, now, form.src,
                    form.dst);
        src = nextSrc;
        dst = nextDst;
    }
}
