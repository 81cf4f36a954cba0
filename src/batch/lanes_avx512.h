// SPDX-License-Identifier: MIT
// 512-bit vectors: what the walk over blocks (blocks.h) needs of them. See lanes_avx2.h.
#pragma once

#include <immintrin.h>

#include <cstddef>

#include "dct4/flows/dct4.h"

namespace orvgen::batch::avx512 {

using dct4::Index;
using dct4::unroll;

template <class R>
struct Vectors;

template <>
struct Vectors<float> {
    using V = __m512;
    static constexpr int lanes = 16;
    static constexpr int columns = 4;
    static constexpr int parts = 4;

    static V load(const float* p) { return _mm512_loadu_ps(p); }
    static void store(float* p, V v) { _mm512_storeu_ps(p, v); }
    static V zero() { return _mm512_setzero_ps(); }
    static V spread(float x) { return _mm512_set1_ps(x); }
    template <class Place>
    static V loadParts(const Place& place) {
        V v = _mm512_castps128_ps512(_mm_loadu_ps(place(Index<0>{})));
        v = _mm512_insertf32x4(v, _mm_loadu_ps(place(Index<1>{})), 1);
        v = _mm512_insertf32x4(v, _mm_loadu_ps(place(Index<2>{})), 2);
        return _mm512_insertf32x4(v, _mm_loadu_ps(place(Index<3>{})), 3);
    }
    template <int part>
    static void storePart(float* p, V v, Index<part>) {
        _mm_storeu_ps(p, _mm512_extractf32x4_ps(v, part));
    }
    static void transposeParts(V (&v)[4]) {
        const __m512d a = _mm512_castps_pd(_mm512_unpacklo_ps(v[0], v[1]));
        const __m512d b = _mm512_castps_pd(_mm512_unpackhi_ps(v[0], v[1]));
        const __m512d c = _mm512_castps_pd(_mm512_unpacklo_ps(v[2], v[3]));
        const __m512d d = _mm512_castps_pd(_mm512_unpackhi_ps(v[2], v[3]));
        v[0] = _mm512_castpd_ps(_mm512_unpacklo_pd(a, c));
        v[1] = _mm512_castpd_ps(_mm512_unpackhi_pd(a, c));
        v[2] = _mm512_castpd_ps(_mm512_unpacklo_pd(b, d));
        v[3] = _mm512_castpd_ps(_mm512_unpackhi_pd(b, d));
    }
    static void splitPairs(V low, V high, V& re, V& im) {
        const __m512i even =
            _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
        const __m512i odd =
            _mm512_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
        re = _mm512_permutex2var_ps(low, even, high);
        im = _mm512_permutex2var_ps(low, odd, high);
    }
    static void joinPairs(V re, V im, V& low, V& high) {
        const __m512i first =
            _mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
        const __m512i second =
            _mm512_setr_epi32(8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
        low = _mm512_permutex2var_ps(re, first, im);
        high = _mm512_permutex2var_ps(re, second, im);
    }
};

template <>
struct Vectors<double> {
    using V = __m512d;
    static constexpr int lanes = 8;
    static constexpr int columns = 2;
    static constexpr int parts = 4;

    static V load(const double* p) { return _mm512_loadu_pd(p); }
    static void store(double* p, V v) { _mm512_storeu_pd(p, v); }
    static V zero() { return _mm512_setzero_pd(); }
    static V spread(double x) { return _mm512_set1_pd(x); }
    template <class Place>
    static V loadParts(const Place& place) {
        V v = _mm512_castpd128_pd512(_mm_loadu_pd(place(Index<0>{})));
        v = _mm512_insertf64x2(v, _mm_loadu_pd(place(Index<1>{})), 1);
        v = _mm512_insertf64x2(v, _mm_loadu_pd(place(Index<2>{})), 2);
        return _mm512_insertf64x2(v, _mm_loadu_pd(place(Index<3>{})), 3);
    }
    template <int part>
    static void storePart(double* p, V v, Index<part>) {
        _mm_storeu_pd(p, _mm512_extractf64x2_pd(v, part));
    }
    static void transposeParts(V (&v)[2]) {
        const V low = _mm512_unpacklo_pd(v[0], v[1]);
        v[1] = _mm512_unpackhi_pd(v[0], v[1]);
        v[0] = low;
    }
    static void splitPairs(V low, V high, V& re, V& im) {
        re = _mm512_permutex2var_pd(low, _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14), high);
        im = _mm512_permutex2var_pd(low, _mm512_setr_epi64(1, 3, 5, 7, 9, 11, 13, 15), high);
    }
    static void joinPairs(V re, V im, V& low, V& high) {
        low = _mm512_permutex2var_pd(re, _mm512_setr_epi64(0, 8, 1, 9, 2, 10, 3, 11), im);
        high = _mm512_permutex2var_pd(re, _mm512_setr_epi64(4, 12, 5, 13, 6, 14, 7, 15), im);
    }
};

// A vector as a value type of the DCT-IV's kernels.
template <class R>
struct LaneValue {
    typename Vectors<R>::V v;

    ORVGEN_DCT4_INLINE friend LaneValue operator+(LaneValue a, LaneValue b) { return {a.v + b.v}; }
    ORVGEN_DCT4_INLINE friend LaneValue operator-(LaneValue a, LaneValue b) { return {a.v - b.v}; }
    ORVGEN_DCT4_INLINE friend LaneValue operator*(LaneValue a, LaneValue b) { return {a.v * b.v}; }
};

}  // namespace orvgen::batch::avx512

namespace orvgen::dct4 {

template <class R>
struct Values<batch::avx512::LaneValue<R>> {
    template <Trig which, int num, int den>
    ORVGEN_DCT4_INLINE static batch::avx512::LaneValue<R> of(Constant<which, num, den> constant) {
        constexpr R value = valueOf<R>(Constant<which, num, den>{});
        static_cast<void>(constant);
        return {batch::avx512::Vectors<R>::spread(value)};
    }
    ORVGEN_DCT4_INLINE static batch::avx512::LaneValue<R> zero() {
        return {batch::avx512::Vectors<R>::zero()};
    }
};

}  // namespace orvgen::dct4
