// SPDX-License-Identifier: MIT
// 256-bit vectors: what the walk over blocks (blocks.h) needs of them.
#pragma once

#include <immintrin.h>

#include <cstddef>

#include "dct4/flows/dct4.h"

namespace orvgen::batch::avx2 {

using dct4::Index;
using dct4::unroll;

template <class R>
struct Vectors;

template <>
struct Vectors<float> {
    using V = __m256;
    static constexpr int lanes = 8;    // transforms in a block
    static constexpr int columns = 4;  // elements in 16 bytes
    static constexpr int parts = 2;    // of 16 bytes

    static V load(const float* p) { return _mm256_loadu_ps(p); }
    static void store(float* p, V v) { _mm256_storeu_ps(p, v); }
    static V zero() { return _mm256_setzero_ps(); }
    static V spread(float x) { return _mm256_set1_ps(x); }
    // 16 bytes from the place of each part; one part to its place.
    template <class Place>
    static V loadParts(const Place& place) {
        return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(place(Index<0>{}))),
                                    _mm_loadu_ps(place(Index<1>{})), 1);
    }
    template <int part>
    static void storePart(float* p, V v, Index<part>) {
        _mm_storeu_ps(p, _mm256_extractf128_ps(v, part));
    }
    // columns x columns elements change places in every part.
    static void transposeParts(V (&v)[4]) {
        const __m256d a = _mm256_castps_pd(_mm256_unpacklo_ps(v[0], v[1]));
        const __m256d b = _mm256_castps_pd(_mm256_unpackhi_ps(v[0], v[1]));
        const __m256d c = _mm256_castps_pd(_mm256_unpacklo_ps(v[2], v[3]));
        const __m256d d = _mm256_castps_pd(_mm256_unpackhi_ps(v[2], v[3]));
        v[0] = _mm256_castpd_ps(_mm256_unpacklo_pd(a, c));
        v[1] = _mm256_castpd_ps(_mm256_unpackhi_pd(a, c));
        v[2] = _mm256_castpd_ps(_mm256_unpacklo_pd(b, d));
        v[3] = _mm256_castpd_ps(_mm256_unpackhi_pd(b, d));
    }
    // Pairs of `lanes` transforms side by side, as real and imaginary parts, and back.
    static void splitPairs(V low, V high, V& re, V& im) {
        const V r = _mm256_shuffle_ps(low, high, 0x88), i = _mm256_shuffle_ps(low, high, 0xdd);
        re = _mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(r), 0xd8));
        im = _mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(i), 0xd8));
    }
    static void joinPairs(V re, V im, V& low, V& high) {
        const V a = _mm256_unpacklo_ps(re, im), b = _mm256_unpackhi_ps(re, im);
        low = _mm256_permute2f128_ps(a, b, 0x20);
        high = _mm256_permute2f128_ps(a, b, 0x31);
    }
};

template <>
struct Vectors<double> {
    using V = __m256d;
    static constexpr int lanes = 4;
    static constexpr int columns = 2;
    static constexpr int parts = 2;

    static V load(const double* p) { return _mm256_loadu_pd(p); }
    static void store(double* p, V v) { _mm256_storeu_pd(p, v); }
    static V zero() { return _mm256_setzero_pd(); }
    static V spread(double x) { return _mm256_set1_pd(x); }
    template <class Place>
    static V loadParts(const Place& place) {
        return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(place(Index<0>{}))),
                                    _mm_loadu_pd(place(Index<1>{})), 1);
    }
    template <int part>
    static void storePart(double* p, V v, Index<part>) {
        _mm_storeu_pd(p, _mm256_extractf128_pd(v, part));
    }
    static void transposeParts(V (&v)[2]) {
        const V low = _mm256_unpacklo_pd(v[0], v[1]);
        v[1] = _mm256_unpackhi_pd(v[0], v[1]);
        v[0] = low;
    }
    static void splitPairs(V low, V high, V& re, V& im) {
        re = _mm256_permute4x64_pd(_mm256_unpacklo_pd(low, high), 0xd8);
        im = _mm256_permute4x64_pd(_mm256_unpackhi_pd(low, high), 0xd8);
    }
    static void joinPairs(V re, V im, V& low, V& high) {
        const V a = _mm256_unpacklo_pd(re, im), b = _mm256_unpackhi_pd(re, im);
        low = _mm256_permute2f128_pd(a, b, 0x20);
        high = _mm256_permute2f128_pd(a, b, 0x31);
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

}  // namespace orvgen::batch::avx2

namespace orvgen::dct4 {

template <class R>
struct Values<batch::avx2::LaneValue<R>> {
    template <Trig which, int num, int den>
    ORVGEN_DCT4_INLINE static batch::avx2::LaneValue<R> of(Constant<which, num, den> constant) {
        constexpr R value = valueOf<R>(Constant<which, num, den>{});
        static_cast<void>(constant);
        return {batch::avx2::Vectors<R>::spread(value)};
    }
    ORVGEN_DCT4_INLINE static batch::avx2::LaneValue<R> zero() {
        return {batch::avx2::Vectors<R>::zero()};
    }
};

}  // namespace orvgen::dct4
