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

// Lane l from p[l * step].
ORVGEN_DCT4_INLINE Lanes32f gather(const float* p, std::ptrdiff_t step) {
    const auto single = [](const float* at) ORVGEN_DCT4_INLINE_LAMBDA {
        return apart(_mm_set_ss(loadElement(at)));
    };
    const __m128 x0 = single(p), x1 = single(p + step);
    const __m128 x2 = single(p + 2 * step), x3 = single(p + 3 * step);
    return {_mm_movelh_ps(_mm_unpacklo_ps(x0, x1), _mm_unpacklo_ps(x2, x3))};
}
ORVGEN_DCT4_INLINE Lanes64f gather(const double* p, std::ptrdiff_t step) {
    return {_mm_loadh_pd(apart(_mm_set_sd(loadElement(p))), p + step)};
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

template <class Real>
struct Values<Lanes<Real>> {
    template <Trig which, int num, int den>
    ORVGEN_DCT4_INLINE static Lanes<Real> of(Constant<which, num, den> constant) {
        constexpr Real value = valueOf<Real>(Constant<which, num, den>{});
        static_cast<void>(constant);
        return spread(value);
    }
    ORVGEN_DCT4_INLINE static Lanes<Real> zero() { return spread(Real{0}); }
};

}  // namespace orvgen::dct4
