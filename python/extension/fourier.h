// SPDX-License-Identifier: MIT
// The Fourier transforms of complex and real data as kinds for run.h. Their code is a scaling flag.
#pragma once

#include "batches.h"
#include "run.h"

namespace orvgen::python {

enum class Direction { Forward, Inverse };

template <class C>
C conjugate(C x) {
    return {x.re, -x.im};
}

// A batch function on places given in bytes.
template <class S, class D, class F>
OrvStatus callBatch(F function, const Places& src, const Places& dst, int len, std::ptrdiff_t count,
                    int flag) {
    constexpr std::ptrdiff_t s = sizeof(S), d = sizeof(D);
    return function(reinterpret_cast<const S*>(src.start), src.stride / s, src.distance / s,
                    reinterpret_cast<D*>(dst.start), dst.stride / d, dst.distance / d, len,
                    static_cast<std::size_t>(count), flag);
}

// fft and ifft of complex data. Where elements do not lie at multiples of their own size, as in a
// field of records, real and imaginary parts are taken as two arrays.
template <class R, Direction direction>
struct ComplexFourier : PlainKind<typename Batches<R>::Complex, typename Batches<R>::Complex> {
    using B = Batches<R>;
    using Src = typename B::Complex;
    using Dst = Src;
    static constexpr std::ptrdiff_t kUnit = sizeof(R), kSrcUnit = kUnit, kDstUnit = kUnit;
    static std::ptrdiff_t reads(Task task) { return task.len; }
    static std::ptrdiff_t writes(Task task) { return task.len; }

    static OrvStatus call(const Places& src, const Places& dst, Task task, std::ptrdiff_t count) {
        if (src.suit(sizeof(Src)) && dst.suit(sizeof(Dst)))
            return callBatch<Src, Dst>(
                direction == Direction::Forward ? B::complexForward : B::complexInverse, src, dst,
                task.len, count, task.code);
        const auto* x = reinterpret_cast<const R*>(src.start);
        auto* y = reinterpret_cast<R*>(dst.start);
        return (direction == Direction::Forward ? B::splitForward : B::splitInverse)(
            x, x + 1, src.stride / kUnit, src.distance / kUnit, y, y + 1, dst.stride / kUnit,
            dst.distance / kUnit, task.len, static_cast<std::size_t>(count), task.code);
    }
};

// rfft: the bins up to len / 2.
template <class R>
struct RealForward : PlainKind<R, typename Batches<R>::Complex> {
    using B = Batches<R>;
    using Src = R;
    using Dst = typename B::Complex;
    static std::ptrdiff_t reads(Task task) { return task.len; }
    static std::ptrdiff_t writes(Task task) { return task.len / 2 + 1; }

    static OrvStatus call(const Places& src, const Places& dst, Task task, std::ptrdiff_t count) {
        return callBatch<Src, Dst>(B::realForward, src, dst, task.len, count, task.code);
    }
};

// ihfft: the conjugate of rfft.
template <class R>
struct RealForwardConjugate : RealForward<R> {
    using typename RealForward<R>::Dst;
    static bool finishes(Task) { return true; }
    static void finish(const Places& dst, Task task, std::ptrdiff_t count) {
        forEach(dst, count, task.len / 2 + 1, [&](std::ptrdiff_t t, std::ptrdiff_t j) {
            store(at(dst, t, j), conjugate(load<Dst>(at(dst, t, j))));
        });
    }
};

// fft and ifft of real data: the half spectrum and its mirror. The inverse is its conjugate.
template <class R, Direction direction>
struct RealFull : RealForward<R> {
    using typename RealForward<R>::Dst;
    static std::ptrdiff_t writes(Task task) { return task.len; }

    static OrvStatus call(const Places& src, const Places& dst, Task task, std::ptrdiff_t count) {
        if (direction == Direction::Inverse)
            task.code = task.code == orvScaleInvByN   ? orvScaleFwdByN
                        : task.code == orvScaleFwdByN ? orvScaleInvByN
                                                      : task.code;
        return RealForward<R>::call(src, dst, task, count);
    }
    static bool finishes(Task) { return true; }
    static void finish(const Places& dst, Task task, std::ptrdiff_t count) {
        const std::ptrdiff_t len = task.len;
        forEach(dst, count, (len + 1) / 2, [&](std::ptrdiff_t t, std::ptrdiff_t k) {
            const Dst x = load<Dst>(at(dst, t, k));
            if (direction == Direction::Inverse) store(at(dst, t, k), conjugate(x));
            if (k > 0)
                store(at(dst, t, len - k), direction == Direction::Inverse ? x : conjugate(x));
        });
        if (direction == Direction::Inverse && len % 2 == 0)
            forEach(dst, count, 1, [&](std::ptrdiff_t t, std::ptrdiff_t) {
                char* middle = at(dst, t, len / 2);
                store(middle, conjugate(load<Dst>(middle)));
            });
    }
};

// irfft.
template <class R>
struct RealInverse : PlainKind<typename Batches<R>::Complex, R> {
    using B = Batches<R>;
    using Src = typename B::Complex;
    using Dst = R;
    static std::ptrdiff_t reads(Task task) { return task.len / 2 + 1; }
    static std::ptrdiff_t writes(Task task) { return task.len; }

    static OrvStatus call(const Places& src, const Places& dst, Task task, std::ptrdiff_t count) {
        return callBatch<Src, Dst>(B::realInverse, src, dst, task.len, count, task.code);
    }
};

// hfft: irfft of the conjugate.
template <class R>
struct RealInverseConjugate : RealInverse<R> {
    using typename RealInverse<R>::Src;
    static constexpr bool kPrepares = true;
    static Src prepare(Src x) { return conjugate(x); }
};

}  // namespace orvgen::python
