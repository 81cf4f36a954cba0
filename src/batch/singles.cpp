// SPDX-License-Identifier: MIT
#include "batch/singles.h"

#include "dct4/flows/dct4.h"
#include "wht/arrangement.h"

namespace orvgen::batch {

namespace {

// The elements of one transform side by side, as the single kernels want them.
template <class R>
void gather(const Array<const R>& a, Layout layout, int n, std::ptrdiff_t t, R* to) {
    const R* re = a.re + t * a.distance;
    const int elements = elementsOf(layout, n);
    if (!isPairs(layout)) {
        for (int j = 0; j < elements; ++j) to[j] = re[j * a.stride];
        return;
    }
    const R* im = a.im + t * a.distance;
    for (int j = 0; j < elements; ++j) {
        to[2 * j] = re[j * a.stride];
        to[2 * j + 1] = im[j * a.stride];
    }
}

template <class R>
void scatter(const R* from, Layout layout, int n, const Array<R>& a, std::ptrdiff_t t) {
    R* re = a.re + t * a.distance;
    const int elements = elementsOf(layout, n);
    if (!isPairs(layout)) {
        for (int j = 0; j < elements; ++j) re[j * a.stride] = from[j];
        return;
    }
    R* im = a.im + t * a.distance;
    for (int j = 0; j < elements; ++j) {
        re[j * a.stride] = from[2 * j];
        im[j * a.stride] = from[2 * j + 1];
    }
}

template <class R>
bool isContiguous(const Array<R>& a, Layout layout) {
    return isPairs(layout) ? a.stride == 2 && a.isInterleaved() : a.stride == 1;
}

// One transform after the other through arrays of contiguous elements, where the task's are none.
template <class R>
[[gnu::noinline]] void runThroughCopies(const Task<R>& task, std::size_t first, bool takesSrc,
                                        bool takesDst) {
    constexpr int most = 2 * (kLengths.last + 1);  // with an element behind
    alignas(16) R x[most], y[most];
    x[2 * task.n] = x[2 * task.n + 1] = 0;
    for (std::size_t i = first; i < task.count; ++i) {
        const auto t = static_cast<std::ptrdiff_t>(i);
        const R* from = task.src.re + t * task.src.distance;
        if (!takesSrc) {
            gather(task.src, task.srcLayout, task.n, t, x);
            from = x;
        }
        R* to = takesDst ? task.dst.re + t * task.dst.distance : y;
        static_cast<void>(task.single(from, to, task.n, task.flag));
        if (!takesDst) scatter(y, task.dstLayout, task.n, task.dst, t);
    }
}

}  // namespace

template <class R>
void runSingles(const Task<R>& task, std::size_t first) {
    const bool takesSrc = isContiguous(task.src, task.srcLayout) && !task.readsBehind;
    const bool takesDst = isContiguous(task.dst, task.dstLayout);
    if (!takesSrc || !takesDst) return runThroughCopies(task, first, takesSrc, takesDst);
    const auto t = static_cast<std::ptrdiff_t>(first);
    const R* from = task.src.re + t * task.src.distance;
    R* to = task.dst.re + t * task.dst.distance;
    for (std::size_t left = task.count - first; left > 0; --left) {
        static_cast<void>(task.single(from, to, task.n, task.flag));
        from += task.src.distance;
        to += task.dst.distance;
    }
}

namespace {

template <class R>
struct WhtFunction;
template <>
struct WhtFunction<float> {
    static constexpr auto single = orvgWHT_32f;
    static constexpr auto element = wht::Element::F32;
};
template <>
struct WhtFunction<double> {
    static constexpr auto single = orvgWHT_64f;
    static constexpr auto element = wht::Element::F64;
};

}  // namespace

template <class R>
void runSingles(const WhtTask<R>& task, std::size_t first) {
    constexpr auto element = WhtFunction<R>::element;
    constexpr int longest = 1 << kOrders.last;
    alignas(64) std::uint8_t buffer[wht::bufferBytes(element, kOrders.last)];
    alignas(16) R x[longest];
    const bool takesSrc = isContiguous(task.src, Layout::Real);
    const bool takesDst = isContiguous(task.dst, Layout::Real);
    const int n = 1 << task.order;
    for (std::size_t i = first; i < task.count; ++i) {
        const auto t = static_cast<std::ptrdiff_t>(i);
        const R* from = task.src.re + t * task.src.distance;
        if (!takesSrc) {
            gather(task.src, Layout::Real, n, t, x);
            from = x;
        }
        R* to = takesDst ? task.dst.re + t * task.dst.distance : x;
        static_cast<void>(WhtFunction<R>::single(from, to, task.order, task.flag, buffer));
        if (!takesDst) scatter(x, Layout::Real, n, task.dst, t);
    }
}

namespace {

template <int N, class R>
void dct4Singles(const Dct4Task<R>& task, std::size_t first) {
    for (std::size_t i = first; i < task.count; ++i) {
        const auto t = static_cast<std::ptrdiff_t>(i);
        const R* src = task.src.re + t * task.src.distance;
        R* dst = task.dst.re + t * task.dst.distance;
        dct4::dct4<N, R>([&](auto j) ORVGEN_DCT4_INLINE_LAMBDA { return src[j * task.src.stride]; },
                         [&](auto k, R y)
                             ORVGEN_DCT4_INLINE_LAMBDA { dst[k * task.dst.stride] = y; });
    }
}

}  // namespace

template <class R>
void runSingles(const Dct4Task<R>& task, std::size_t first) {
    switch (task.n) {
        case 2:
            return dct4Singles<2>(task, first);
        case 4:
            return dct4Singles<4>(task, first);
        case 8:
            return dct4Singles<8>(task, first);
        case 16:
            return dct4Singles<16>(task, first);
        default:
            return dct4Singles<32>(task, first);
    }
}

template void runSingles(const Task<float>&, std::size_t);
template void runSingles(const Task<double>&, std::size_t);
template void runSingles(const WhtTask<float>&, std::size_t);
template void runSingles(const WhtTask<double>&, std::size_t);
template void runSingles(const Dct4Task<float>&, std::size_t);
template void runSingles(const Dct4Task<double>&, std::size_t);

}  // namespace orvgen::batch
