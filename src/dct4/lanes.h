// SPDX-License-Identifier: MIT
// A 16-byte vector as a value type of the kernels: four binary32 or two binary64 lanes, SSE2 alone.
//
// Source and destination of a transform have no alignment, so that a lane is loaded and stored by
// itself; only the plan's own tables and scratch are read and written by whole aligned vectors.
#pragma once

#include <emmintrin.h>

#include <cstddef>

#include "dct4/elements.h"
#include "dct4/flows/complex.h"

namespace orvgen::dct4 {

template <class Real>
struct Lanes;

template <>
struct Lanes<float> {
    __m128 v;
};
template <>
struct Lanes<double> {
    __m128d v;
};

using Lanes32f = Lanes<float>;
using Lanes64f = Lanes<double>;

// Keeps single-element accesses single: a compiler that sees four neighbouring ones would make one
// unaligned vector access of them.
ORVGEN_DCT4_INLINE __m128 apart(__m128 v) {
    asm("" : "+x"(v));
    return v;
}
ORVGEN_DCT4_INLINE __m128d apart(__m128d v) {
    asm("" : "+x"(v));
    return v;
}

ORVGEN_DCT4_INLINE Lanes32f operator+(Lanes32f a, Lanes32f b) { return {_mm_add_ps(a.v, b.v)}; }
ORVGEN_DCT4_INLINE Lanes32f operator-(Lanes32f a, Lanes32f b) { return {_mm_sub_ps(a.v, b.v)}; }
ORVGEN_DCT4_INLINE Lanes32f operator*(Lanes32f a, Lanes32f b) { return {_mm_mul_ps(a.v, b.v)}; }
ORVGEN_DCT4_INLINE Lanes64f operator+(Lanes64f a, Lanes64f b) { return {_mm_add_pd(a.v, b.v)}; }
ORVGEN_DCT4_INLINE Lanes64f operator-(Lanes64f a, Lanes64f b) { return {_mm_sub_pd(a.v, b.v)}; }
ORVGEN_DCT4_INLINE Lanes64f operator*(Lanes64f a, Lanes64f b) { return {_mm_mul_pd(a.v, b.v)}; }

ORVGEN_DCT4_INLINE Lanes32f spread(float x) { return {_mm_set1_ps(x)}; }
ORVGEN_DCT4_INLINE Lanes64f spread(double x) { return {_mm_set1_pd(x)}; }

ORVGEN_DCT4_INLINE Lanes32f loadAligned(const float* p) { return {_mm_load_ps(p)}; }
ORVGEN_DCT4_INLINE Lanes64f loadAligned(const double* p) { return {_mm_load_pd(p)}; }

ORVGEN_DCT4_INLINE void storeAligned(float* p, Lanes32f x) { _mm_store_ps(p, x.v); }
ORVGEN_DCT4_INLINE void storeAligned(double* p, Lanes64f x) { _mm_store_pd(p, x.v); }

// One element in the lowest lane. The zeros are of the element's type: an integer zero, as the
// header of clang has it, would be converted at run time, the rounding mode being unknown.
ORVGEN_DCT4_INLINE __m128 loadSingle(const float* p) {
    return apart(__m128{loadElement(p), 0.0F, 0.0F, 0.0F});
}
ORVGEN_DCT4_INLINE __m128d loadSingle(const double* p) {
    return apart(__m128d{loadElement(p), 0.0});
}

// Lane l from p[l * step].
ORVGEN_DCT4_INLINE Lanes32f gather(const float* p, std::ptrdiff_t step) {
    const __m128 x0 = loadSingle(p), x1 = loadSingle(p + step);
    const __m128 x2 = loadSingle(p + 2 * step), x3 = loadSingle(p + 3 * step);
    return {_mm_movelh_ps(_mm_unpacklo_ps(x0, x1), _mm_unpacklo_ps(x2, x3))};
}
ORVGEN_DCT4_INLINE Lanes64f gather(const double* p, std::ptrdiff_t step) {
    return {_mm_loadh_pd(loadSingle(p), p + step)};
}

// Lane l to p[l * step].
ORVGEN_DCT4_INLINE void scatter(float* p, std::ptrdiff_t step, Lanes32f x) {
    const __m128 high = apart(_mm_movehl_ps(x.v, x.v));
    storeElement(p, _mm_cvtss_f32(x.v));
    storeElement(p + step, _mm_cvtss_f32(apart(_mm_shuffle_ps(x.v, x.v, _MM_SHUFFLE(1, 1, 1, 1)))));
    storeElement(p + 2 * step, _mm_cvtss_f32(high));
    storeElement(p + 3 * step,
                 _mm_cvtss_f32(apart(_mm_shuffle_ps(high, high, _MM_SHUFFLE(1, 1, 1, 1)))));
}
ORVGEN_DCT4_INLINE void scatter(double* p, std::ptrdiff_t step, Lanes64f x) {
    storeElement(p, x.v[0]);
    storeElement(p + step, apart(x.v)[1]);
}

// The multipliers of the kernels, cos(j pi / 64) in all lanes of a vector, j = 0 .. 64. They stand
// in memory of their own: of a literal the compiler may keep one number and spread it into the
// lanes. (Defined constexpr: nothing initialises them at run time, as clang-tidy fears.)
template <class Real>
struct Multipliers {
    alignas(16) Real cosines[65][16 / sizeof(Real)];
};
// NOLINTBEGIN(bugprone-dynamic-static-initializers)
[[gnu::visibility("hidden")]] extern const Multipliers<float> multipliers32f;
[[gnu::visibility("hidden")]] extern const Multipliers<double> multipliers64f;
// NOLINTEND(bugprone-dynamic-static-initializers)

template <class Real>
struct Values<Lanes<Real>> {
    template <Trig which, int num, int den>
    ORVGEN_DCT4_INLINE static Lanes<Real> of(Constant<which, num, den> constant) {
        constexpr int steps = stepsOf(Constant<which, num, den>{});
        static_assert(steps % 2 == 0);
        static_cast<void>(constant);
        if constexpr (sizeof(Real) == sizeof(float)) {
            return loadAligned(multipliers32f.cosines[steps / 2]);
        } else {
            return loadAligned(multipliers64f.cosines[steps / 2]);
        }
    }
    ORVGEN_DCT4_INLINE static Lanes<Real> zero() { return spread(Real()); }
};

}  // namespace orvgen::dct4
