// SPDX-License-Identifier: MIT
// Batches as FFTW runs them: patient plans of many transforms.
#pragma once

#include <fftw3.h>

#include <cstddef>
#include <functional>
#include <utility>

#include "orvgen.h"

namespace orvgen::bench {

using Run = std::function<void()>;

// Where the elements of src and dst stand; the count of transforms. The imaginary parts of split
// arrays are so many numbers behind the real ones.
struct Places {
    std::ptrdiff_t stride, distance, outStride, outDistance;
    std::size_t count;
    std::ptrdiff_t plane = 0, outPlane = 0;
};

// FFTW of one element type.
template <class R>
struct Fftw;
#define ORVGEN_FFTW(PREFIX, R)                                                                     \
    template <>                                                                                    \
    struct Fftw<R> {                                                                               \
        using Complex = PREFIX##_complex;                                                          \
        using Plan = PREFIX##_plan;                                                                \
        static Run runOf(Plan plan) {                                                              \
            if (plan == nullptr) return {};                                                        \
            return [plan] { PREFIX##_execute(plan); };                                             \
        }                                                                                          \
        template <int sign>                                                                        \
        static Run dft(int n, R* x, R* y, const Places& p) {                                       \
            return runOf(PREFIX##_plan_many_dft(                                                   \
                1, &n, int(p.count), reinterpret_cast<Complex*>(x), nullptr, int(p.stride),        \
                int(p.distance), reinterpret_cast<Complex*>(y), nullptr, int(p.outStride),         \
                int(p.outDistance), sign, FFTW_PATIENT));                                          \
        }                                                                                          \
        static Run forward(int n, R* x, R* y, const Places& p) {                                   \
            return runOf(PREFIX##_plan_many_dft_r2c(                                               \
                1, &n, int(p.count), x, nullptr, int(p.stride), int(p.distance),                   \
                reinterpret_cast<Complex*>(y), nullptr, int(p.outStride), int(p.outDistance),      \
                FFTW_PATIENT));                                                                    \
        }                                                                                          \
        static Run inverse(int n, R* x, R* y, const Places& p) {                                   \
            return runOf(PREFIX##_plan_many_dft_c2r(                                               \
                1, &n, int(p.count), reinterpret_cast<Complex*>(x), nullptr, int(p.stride),        \
                int(p.distance), y, nullptr, int(p.outStride), int(p.outDistance), FFTW_PATIENT)); \
        }                                                                                          \
        static Run hartley(int n, R* x, R* y, const Places& p) {                                   \
            const PREFIX##_r2r_kind kind = FFTW_DHT;                                               \
            return runOf(PREFIX##_plan_many_r2r(1, &n, int(p.count), x, nullptr, int(p.stride),    \
                                                int(p.distance), y, nullptr, int(p.outStride),     \
                                                int(p.outDistance), &kind, FFTW_PATIENT));         \
        }                                                                                          \
        /* The plan is forward; backward is the same with the parts exchanged on both sides. */    \
        template <int sign>                                                                        \
        static Run split(int n, R* x, R* y, const Places& p) {                                     \
            const PREFIX##_iodim dim = {n, int(p.stride), int(p.outStride)};                       \
            const PREFIX##_iodim many = {int(p.count), int(p.distance), int(p.outDistance)};       \
            R *re = x, *im = x + p.plane, *outRe = y, *outIm = y + p.outPlane;                     \
            if (sign == FFTW_BACKWARD) std::swap(re, im), std::swap(outRe, outIm);                 \
            return runOf(PREFIX##_plan_guru_split_dft(1, &dim, 1, &many, re, im, outRe, outIm,     \
                                                      FFTW_PATIENT));                              \
        }                                                                                          \
        static void limit(double seconds) { PREFIX##_set_timelimit(seconds); }                     \
    };
ORVGEN_FFTW(fftwf, Orv32f)
ORVGEN_FFTW(fftw, Orv64f)
#undef ORVGEN_FFTW

}  // namespace orvgen::bench
