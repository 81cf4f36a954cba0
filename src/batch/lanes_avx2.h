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
    static constexpr int lanes = 8;  // transforms in a block

    static V load(const float* p) { return _mm256_loadu_ps(p); }
    static void store(float* p, V v) { _mm256_storeu_ps(p, v); }
    static V zero() { return _mm256_setzero_ps(); }
    static V spread(float x) { return _mm256_set1_ps(x); }

    // 8 x 8 numbers: rows become columns.
    ORVGEN_DCT4_INLINE static void transpose(V (&v)[8]) {
        __m256d u[8];
        transposeParts(v, u);
        transposeParts(v + 4, u + 4);
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
            v[c] = _mm256_castpd_ps(_mm256_permute2f128_pd(u[c], u[4 + c], 0x20));
            v[4 + c] = _mm256_castpd_ps(_mm256_permute2f128_pd(u[c], u[4 + c], 0x31));
        });
    }
    // The same of 4 x 4 numbers in each 16-byte part of four vectors.
    ORVGEN_DCT4_INLINE static void transposeParts(const V* v, __m256d* u) {
        const __m256d a = _mm256_castps_pd(_mm256_unpacklo_ps(v[0], v[1]));
        const __m256d b = _mm256_castps_pd(_mm256_unpackhi_ps(v[0], v[1]));
        const __m256d c = _mm256_castps_pd(_mm256_unpacklo_ps(v[2], v[3]));
        const __m256d d = _mm256_castps_pd(_mm256_unpackhi_ps(v[2], v[3]));
        u[0] = _mm256_unpacklo_pd(a, c);
        u[1] = _mm256_unpackhi_pd(a, c);
        u[2] = _mm256_unpacklo_pd(b, d);
        u[3] = _mm256_unpackhi_pd(b, d);
    }

    // The first columns of all rows as slots; row(Index<l>) is where row l begins.
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<8>, const Row& row, float* to) {
        V v[8];
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA { v[l] = load(row(l)); });
        transpose(v);
        unroll<8>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { store(to + c * 8, v[c]); });
    }
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<4>, const Row& row, float* to) {
        V v[4];
        __m256d u[4];
        unroll<4>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            v[l] = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(row(l))),
                                        _mm_loadu_ps(row(Index<l + 4>{})), 1);
        });
        transposeParts(v, u);
        unroll<4>([&](auto c)
                      ORVGEN_DCT4_INLINE_LAMBDA { store(to + c * 8, _mm256_castpd_ps(u[c])); });
    }
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<2>, const Row& row, float* to) {
        const auto four = [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            const __m128 low = pairs(row(l), row(Index<l + 1>{}));
            const __m128 high = pairs(row(Index<l + 4>{}), row(Index<l + 5>{}));
            return _mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1);
        };
        const V a = four(Index<0>{}), b = four(Index<2>{});
        store(to, _mm256_shuffle_ps(a, b, 0x88));
        store(to + 8, _mm256_shuffle_ps(a, b, 0xdd));
    }
    ORVGEN_DCT4_INLINE static __m128 pairs(const float* p, const float* q) {
        const __m128 low = _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(p));
        return _mm_loadh_pi(low, reinterpret_cast<const __m64*>(q));
    }

    // Slots as the first columns of all rows: put(Index<l>, write) calls write(p) with the place of
    // row l, if there is such a row.
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<8>, const float* from, const Put& put) {
        V v[8];
        unroll<8>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = load(from + c * 8); });
        transpose(v);
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA { store(p, v[l]); });
        });
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<4>, const float* from, const Put& put) {
        V v[4];
        __m256d u[4];
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = load(from + c * 8); });
        transposeParts(v, u);
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l / 4;
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
                _mm_storeu_ps(p, _mm256_extractf128_ps(_mm256_castpd_ps(u[l % 4]), part));
            });
        });
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<2>, const float* from, const Put& put) {
        const V x = load(from), y = load(from + 8);
        const V v[2] = {_mm256_unpacklo_ps(x, y), _mm256_unpackhi_ps(x, y)};
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l / 4;
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
                const __m128 two = _mm256_extractf128_ps(v[l / 2 % 2], part);
                if constexpr (l % 2 == 0)
                    _mm_storel_pi(reinterpret_cast<__m64*>(p), two);
                else
                    _mm_storeh_pi(reinterpret_cast<__m64*>(p), two);
            });
        });
    }

    // Pairs of `lanes` transforms side by side, as real and imaginary parts, and back. In any
    // order: the transforms change places, and joining them puts them back.
    ORVGEN_DCT4_INLINE static void splitPairsInAnyOrder(V low, V high, V& re, V& im) {
        re = _mm256_shuffle_ps(low, high, 0x88);
        im = _mm256_shuffle_ps(low, high, 0xdd);
    }
    ORVGEN_DCT4_INLINE static void joinPairsInAnyOrder(V re, V im, V& low, V& high) {
        low = _mm256_unpacklo_ps(re, im);
        high = _mm256_unpackhi_ps(re, im);
    }
    ORVGEN_DCT4_INLINE static void splitPairs(V low, V high, V& re, V& im) {
        splitPairsInAnyOrder(low, high, re, im);
        re = _mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(re), 0xd8));
        im = _mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(im), 0xd8));
    }
    ORVGEN_DCT4_INLINE static void joinPairs(V re, V im, V& low, V& high) {
        const V a = _mm256_unpacklo_ps(re, im), b = _mm256_unpackhi_ps(re, im);
        low = _mm256_permute2f128_ps(a, b, 0x20);
        high = _mm256_permute2f128_ps(a, b, 0x31);
    }

    // Numbers from anywhere side by side: at(Index<l>) is where number l stands.
    template <class At>
    ORVGEN_DCT4_INLINE static V gatherNumbers(const At& at) {
        return _mm256_insertf128_ps(_mm256_castps128_ps256(four(Index<0>{}, at)),
                                    four(Index<4>{}, at), 1);
    }
    template <int l, class At>
    ORVGEN_DCT4_INLINE static __m128 four(Index<l>, const At& at) {
        __m128 v = _mm_load_ss(at(Index<l>{}));
        v = _mm_insert_ps(v, _mm_load_ss(at(Index<l + 1>{})), 0x10);
        v = _mm_insert_ps(v, _mm_load_ss(at(Index<l + 2>{})), 0x20);
        return _mm_insert_ps(v, _mm_load_ss(at(Index<l + 3>{})), 0x30);
    }
    // And back; put(Index<l>, write) as in fromSlots.
    template <class Put>
    ORVGEN_DCT4_INLINE static void scatterNumbers(V v, const Put& put) {
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
                const __m128 part = _mm256_extractf128_ps(v, l / 4);
                _mm_store_ss(p, _mm_shuffle_ps(part, part, l % 4));
            });
        });
    }

    // Pairs from anywhere side by side: at(Index<l>) is where pair l stands.
    template <class At>
    ORVGEN_DCT4_INLINE static V gatherPairs(const At& at) {
        const __m128 low = pairs(at(Index<0>{}), at(Index<1>{}));
        const __m128 high = pairs(at(Index<2>{}), at(Index<3>{}));
        return _mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1);
    }
    // And back; put(Index<l>, write) as in fromSlots.
    template <class Put>
    ORVGEN_DCT4_INLINE static void scatterPairs(V v, const Put& put) {
        unroll<4>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l / 2;
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
                const __m128 two = _mm256_extractf128_ps(v, part);
                if constexpr (l % 2 == 0)
                    _mm_storel_pi(reinterpret_cast<__m64*>(p), two);
                else
                    _mm_storeh_pi(reinterpret_cast<__m64*>(p), two);
            });
        });
    }
};

template <>
struct Vectors<double> {
    using V = __m256d;
    static constexpr int lanes = 4;

    static V load(const double* p) { return _mm256_loadu_pd(p); }
    static void store(double* p, V v) { _mm256_storeu_pd(p, v); }
    static V zero() { return _mm256_setzero_pd(); }
    static V spread(double x) { return _mm256_set1_pd(x); }

    ORVGEN_DCT4_INLINE static void transpose(V (&v)[4]) {
        const V a = _mm256_unpacklo_pd(v[0], v[1]), b = _mm256_unpackhi_pd(v[0], v[1]);
        const V c = _mm256_unpacklo_pd(v[2], v[3]), d = _mm256_unpackhi_pd(v[2], v[3]);
        v[0] = _mm256_permute2f128_pd(a, c, 0x20);
        v[1] = _mm256_permute2f128_pd(b, d, 0x20);
        v[2] = _mm256_permute2f128_pd(a, c, 0x31);
        v[3] = _mm256_permute2f128_pd(b, d, 0x31);
    }

    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<4>, const Row& row, double* to) {
        V v[4];
        unroll<4>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA { v[l] = load(row(l)); });
        transpose(v);
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { store(to + c * 4, v[c]); });
    }
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<2>, const Row& row, double* to) {
        const auto two = [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(row(l))),
                                        _mm_loadu_pd(row(Index<l + 2>{})), 1);
        };
        const V a = two(Index<0>{}), b = two(Index<1>{});
        store(to, _mm256_unpacklo_pd(a, b));
        store(to + 4, _mm256_unpackhi_pd(a, b));
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<4>, const double* from, const Put& put) {
        V v[4];
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = load(from + c * 4); });
        transpose(v);
        unroll<4>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            put(l, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA { store(p, v[l]); });
        });
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<2>, const double* from, const Put& put) {
        const V x = load(from), y = load(from + 4);
        const V v[2] = {_mm256_unpacklo_pd(x, y), _mm256_unpackhi_pd(x, y)};
        unroll<4>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l / 2;
            put(l, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA {
                _mm_storeu_pd(p, _mm256_extractf128_pd(v[l % 2], part));
            });
        });
    }

    ORVGEN_DCT4_INLINE static void splitPairsInAnyOrder(V low, V high, V& re, V& im) {
        re = _mm256_unpacklo_pd(low, high);
        im = _mm256_unpackhi_pd(low, high);
    }
    ORVGEN_DCT4_INLINE static void joinPairsInAnyOrder(V re, V im, V& low, V& high) {
        splitPairsInAnyOrder(re, im, low, high);
    }
    ORVGEN_DCT4_INLINE static void splitPairs(V low, V high, V& re, V& im) {
        re = _mm256_permute4x64_pd(_mm256_unpacklo_pd(low, high), 0xd8);
        im = _mm256_permute4x64_pd(_mm256_unpackhi_pd(low, high), 0xd8);
    }
    ORVGEN_DCT4_INLINE static void joinPairs(V re, V im, V& low, V& high) {
        const V a = _mm256_unpacklo_pd(re, im), b = _mm256_unpackhi_pd(re, im);
        low = _mm256_permute2f128_pd(a, b, 0x20);
        high = _mm256_permute2f128_pd(a, b, 0x31);
    }

    template <class At>
    ORVGEN_DCT4_INLINE static V gatherNumbers(const At& at) {
        return _mm256_insertf128_pd(_mm256_castpd128_pd256(two(Index<0>{}, at)),
                                    two(Index<2>{}, at), 1);
    }
    template <int l, class At>
    ORVGEN_DCT4_INLINE static __m128d two(Index<l>, const At& at) {
        return _mm_loadh_pd(_mm_load_sd(at(Index<l>{})), at(Index<l + 1>{}));
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void scatterNumbers(V v, const Put& put) {
        unroll<4>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            put(l, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA {
                const __m128d part = _mm256_extractf128_pd(v, l / 2);
                if constexpr (l % 2 == 0)
                    _mm_storel_pd(p, part);
                else
                    _mm_storeh_pd(p, part);
            });
        });
    }
    template <class At>
    ORVGEN_DCT4_INLINE static V gatherPairs(const At& at) {
        return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(at(Index<0>{}))),
                                    _mm_loadu_pd(at(Index<1>{})), 1);
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void scatterPairs(V v, const Put& put) {
        unroll<2>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l;
            put(l, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA {
                _mm_storeu_pd(p, _mm256_extractf128_pd(v, part));
            });
        });
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
