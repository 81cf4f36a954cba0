// SPDX-License-Identifier: MIT
// The Walsh-Hadamard transform and the short DCT-IV in lanes, written once over vectors: their
// single kernels are not of the kernel compiler's making, or are loops over memory. Included by the
// file of each target, in its namespace, behind layout.h.

// The layers of `count` bits on 2^count vectors: of every pair that differs in a bit, sum and
// difference, the lowest bit first.
template <class R, int count>
ORVGEN_DCT4_INLINE void butterflies(typename Vectors<R>::V (&v)[1 << count]) {
    unroll<count>([&](auto bit) ORVGEN_DCT4_INLINE_LAMBDA {
        unroll<1 << count>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
            if constexpr ((i & 1 << bit) == 0) {
                const auto a = v[i], b = v[i | 1 << bit];
                v[i] = a + b;
                v[i | 1 << bit] = a - b;
            }
        });
    });
}

// One pass over all slots: `count` layers from bit `low` on. Scaled where it is the last.
template <class R, int count>
void whtPass(const R* src, std::ptrdiff_t srcStep, R* dst, std::ptrdiff_t dstStep, int order,
             int low, const typename Vectors<R>::V* scale) {
    using Vs = Vectors<R>;
    const int inner = 1 << low;
    for (int high = 0; high < 1 << order; high += inner << count)
        for (int at = high; at < high + inner; ++at) {
            typename Vs::V v[1 << count];
            unroll<1 << count>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
                v[i] = Vs::load(src + (at + i * inner) * srcStep);
            });
            butterflies<R, count>(v);
            if (scale != nullptr)
                unroll<1 << count>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA { v[i] = v[i] * *scale; });
            unroll<1 << count>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
                Vs::store(dst + (at + i * inner) * dstStep, v[i]);
            });
        }
}

// Steps from slot to slot in numbers. src may be dst.
template <class R>
void whtInLanes(const R* src, std::ptrdiff_t srcStep, R* dst, std::ptrdiff_t dstStep, int order,
                R factor) {
    const auto scale = Vectors<R>::spread(factor);
    constexpr int radix = 3;
    for (int low = 0; low < order; low += radix) {
        const auto* last = low + radix >= order ? &scale : nullptr;
        switch (order - low) {
            case 1:
                whtPass<R, 1>(src, srcStep, dst, dstStep, order, low, last);
                break;
            case 2:
                whtPass<R, 2>(src, srcStep, dst, dstStep, order, low, last);
                break;
            default:
                whtPass<R, 3>(src, srcStep, dst, dstStep, order, low, last);
                break;
        }
        src = dst;
        srcStep = dstStep;
    }
}

// A real transform of n points whose kernel(src, srcStep, dst, dstStep) works on slots, steps being
// in numbers; `slots` is room for a block.
template <class R, class AnyTask, class Kernel>
std::size_t runInLanes(const AnyTask& task, int n, R* slots, const Kernel& kernel) {
    constexpr int lanes = Vectors<R>::lanes;
    const Form srcForm(task.src, Layout::Real, n), dstForm(task.dst, Layout::Real, n);
    return walkGroups<R>(task.count, lanes / 2 + 1, 1, [&](const Group<R>& g) {
        const Block<R> b = g.block(0);
        const R* src = slots;
        std::ptrdiff_t srcStep = lanes;
        if (srcForm.path == Path::Direct && g.isComplete()) {
            src = task.src.re + b.first;
            srcStep = task.src.stride;
        } else {
            gather(task.src, srcForm, g, slots, 0);
        }
        if (dstForm.path == Path::Direct && g.isComplete()) {
            kernel(src, srcStep, task.dst.re + b.first, task.dst.stride);
        } else {
            kernel(src, srcStep, slots, std::ptrdiff_t{lanes});
            scatter(static_cast<const R*>(slots), 0, dstForm, g, task.dst);
        }
    });
}

// Up to this order a block fits the nearer caches; beyond it the single kernels, with vectors along
// the transform, are ahead.
constexpr int kLastWhtOrder = 10;

// As the single kernels have it; the powers of two are exact.
template <class R>
R whtFactor(int order, Scale scale) {
    if (scale == scaleNone) return 1;
    const bool isRoot = scale == scaleBySqrtN;
    // In binary64 1/sqrt(2) is 1 divided by the rounded root.
    constexpr R root =
        sizeof(R) == 4 ? static_cast<R>(0x1.6a09e6p-1F) : static_cast<R>(0x1.6a09e667f3bccp-1);
    R factor = isRoot && order % 2 == 1 ? root : 1;
    for (int halvings = isRoot ? order / 2 : order; halvings > 0; --halvings)
        factor *= static_cast<R>(0.5);
    return factor;
}

template <class R>
std::size_t runWht(const WhtTask<R>& task) {
    if (task.order > kLastWhtOrder) return 0;
    alignas(64) R slots[Vectors<R>::lanes << kLastWhtOrder];
    const R factor = whtFactor<R>(task.order, task.scale);
    return runInLanes(task, 1 << task.order, slots,
                      [&](const R* src, std::ptrdiff_t srcStep, R* dst, std::ptrdiff_t dstStep) {
                          whtInLanes(src, srcStep, dst, dstStep, task.order, factor);
                      });
}

template <int N, class R>
std::size_t runDct4Of(const Dct4Task<R>& task) {
    using Vs = Vectors<R>;
    alignas(64) R slots[N * Vs::lanes];
    return runInLanes(
        task, N, slots, [](const R* src, std::ptrdiff_t srcStep, R* dst, std::ptrdiff_t dstStep) {
            dct4::dct4<N, LaneValue<R>>(
                [&](auto j)
                    ORVGEN_DCT4_INLINE_LAMBDA { return LaneValue<R>{Vs::load(src + j * srcStep)}; },
                [&](auto k, LaneValue<R> y)
                    ORVGEN_DCT4_INLINE_LAMBDA { Vs::store(dst + k * dstStep, y.v); });
        });
}

template <class R>
std::size_t runDct4(const Dct4Task<R>& task) {
    switch (task.n) {
        case 2:
            return runDct4Of<2>(task);
        case 4:
            return runDct4Of<4>(task);
        case 8:
            return runDct4Of<8>(task);
        case 16:
            return runDct4Of<16>(task);
        default:
            return runDct4Of<32>(task);
    }
}
