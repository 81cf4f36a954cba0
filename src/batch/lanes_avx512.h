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

    static V load(const float* p) { return _mm512_loadu_ps(p); }
    static void store(float* p, V v) { _mm512_storeu_ps(p, v); }
    static V zero() { return _mm512_setzero_ps(); }
    static V spread(float x) { return _mm512_set1_ps(x); }

    // 16 x 16 numbers: rows become columns.
    ORVGEN_DCT4_INLINE static void transpose(V (&v)[16]) {
        __m512d u[16];
        unroll<4>([&](auto q) ORVGEN_DCT4_INLINE_LAMBDA { transposeParts(v + 4 * q, u + 4 * q); });
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
            const __m512d a = _mm512_shuffle_f64x2(u[c], u[4 + c], 0x88);
            const __m512d b = _mm512_shuffle_f64x2(u[c], u[4 + c], 0xdd);
            const __m512d e = _mm512_shuffle_f64x2(u[8 + c], u[12 + c], 0x88);
            const __m512d f = _mm512_shuffle_f64x2(u[8 + c], u[12 + c], 0xdd);
            v[c] = _mm512_castpd_ps(_mm512_shuffle_f64x2(a, e, 0x88));
            v[4 + c] = _mm512_castpd_ps(_mm512_shuffle_f64x2(b, f, 0x88));
            v[8 + c] = _mm512_castpd_ps(_mm512_shuffle_f64x2(a, e, 0xdd));
            v[12 + c] = _mm512_castpd_ps(_mm512_shuffle_f64x2(b, f, 0xdd));
        });
    }
    // The same of 4 x 4 numbers in each 16-byte part of four vectors.
    ORVGEN_DCT4_INLINE static void transposeParts(const V* v, __m512d* u) {
        const __m512d a = _mm512_castps_pd(_mm512_unpacklo_ps(v[0], v[1]));
        const __m512d b = _mm512_castps_pd(_mm512_unpackhi_ps(v[0], v[1]));
        const __m512d c = _mm512_castps_pd(_mm512_unpacklo_ps(v[2], v[3]));
        const __m512d d = _mm512_castps_pd(_mm512_unpackhi_ps(v[2], v[3]));
        u[0] = _mm512_unpacklo_pd(a, c);
        u[1] = _mm512_unpackhi_pd(a, c);
        u[2] = _mm512_unpacklo_pd(b, d);
        u[3] = _mm512_unpackhi_pd(b, d);
    }

    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<16>, const Row& row, float* to) {
        V v[16];
        unroll<16>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA { v[l] = load(row(l)); });
        transpose(v);
        unroll<16>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { store(to + c * 16, v[c]); });
    }
    // Rows 0 to 3 are the lower, 4 to 7 the upper halves of the first four vectors.
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<8>, const Row& row, float* to) {
        V v[8];
        __m512d u[8];
        unroll<8>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int l = i / 4 * 8 + i % 4;
            v[i] = _mm512_insertf32x8(_mm512_castps256_ps512(_mm256_loadu_ps(row(Index<l>{}))),
                                      _mm256_loadu_ps(row(Index<l + 4>{})), 1);
        });
        transposeParts(v, u);
        transposeParts(v + 4, u + 4);
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
            store(to + c * 16, _mm512_castpd_ps(_mm512_shuffle_f64x2(u[c], u[4 + c], 0x88)));
            store(to + (4 + c) * 16, _mm512_castpd_ps(_mm512_shuffle_f64x2(u[c], u[4 + c], 0xdd)));
        });
    }
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<4>, const Row& row, float* to) {
        V v[4];
        __m512d u[4];
        unroll<4>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            v[l] = _mm512_castps128_ps512(_mm_loadu_ps(row(l)));
            v[l] = _mm512_insertf32x4(v[l], _mm_loadu_ps(row(Index<l + 4>{})), 1);
            v[l] = _mm512_insertf32x4(v[l], _mm_loadu_ps(row(Index<l + 8>{})), 2);
            v[l] = _mm512_insertf32x4(v[l], _mm_loadu_ps(row(Index<l + 12>{})), 3);
        });
        transposeParts(v, u);
        unroll<4>([&](auto c)
                      ORVGEN_DCT4_INLINE_LAMBDA { store(to + c * 16, _mm512_castpd_ps(u[c])); });
    }
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<2>, const Row& row, float* to) {
        const auto eight = [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            V v = _mm512_castps128_ps512(pairs(row(l), row(Index<l + 1>{})));
            v = _mm512_insertf32x4(v, pairs(row(Index<l + 4>{}), row(Index<l + 5>{})), 1);
            v = _mm512_insertf32x4(v, pairs(row(Index<l + 8>{}), row(Index<l + 9>{})), 2);
            return _mm512_insertf32x4(v, pairs(row(Index<l + 12>{}), row(Index<l + 13>{})), 3);
        };
        const V a = eight(Index<0>{}), b = eight(Index<2>{});
        store(to, _mm512_shuffle_ps(a, b, 0x88));
        store(to + 16, _mm512_shuffle_ps(a, b, 0xdd));
    }
    ORVGEN_DCT4_INLINE static __m128 pairs(const float* p, const float* q) {
        const __m128 low = _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(p));
        return _mm_loadh_pi(low, reinterpret_cast<const __m64*>(q));
    }

    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<16>, const float* from, const Put& put) {
        V v[16];
        unroll<16>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = load(from + c * 16); });
        transpose(v);
        unroll<16>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA { store(p, v[l]); });
        });
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<8>, const float* from, const Put& put) {
        V v[8];
        __m512d u[8];
        unroll<8>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = load(from + c * 16); });
        transposeParts(v, u);
        transposeParts(v + 4, u + 4);
        const __m512i low = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11);
        const __m512i high = _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15);
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
            putHalves<c>(_mm512_permutex2var_pd(u[c], low, u[4 + c]), put);
            putHalves<c + 8>(_mm512_permutex2var_pd(u[c], high, u[4 + c]), put);
        });
    }
    // Rows l and l + 4.
    template <int l, class Put>
    ORVGEN_DCT4_INLINE static void putHalves(__m512d v, const Put& put) {
        put(Index<l>{}, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
            _mm256_storeu_ps(p, _mm256_castpd_ps(_mm512_castpd512_pd256(v)));
        });
        put(Index<l + 4>{}, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
            _mm256_storeu_ps(p, _mm256_castpd_ps(_mm512_extractf64x4_pd(v, 1)));
        });
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<4>, const float* from, const Put& put) {
        V v[4];
        __m512d u[4];
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = load(from + c * 16); });
        transposeParts(v, u);
        unroll<16>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l / 4;
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
                _mm_storeu_ps(p, _mm512_extractf32x4_ps(_mm512_castpd_ps(u[l % 4]), part));
            });
        });
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<2>, const float* from, const Put& put) {
        const V x = load(from), y = load(from + 16);
        const V v[2] = {_mm512_unpacklo_ps(x, y), _mm512_unpackhi_ps(x, y)};
        unroll<16>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l / 4;
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
                const __m128 two = _mm512_extractf32x4_ps(v[l / 2 % 2], part);
                if constexpr (l % 2 == 0)
                    _mm_storel_pi(reinterpret_cast<__m64*>(p), two);
                else
                    _mm_storeh_pi(reinterpret_cast<__m64*>(p), two);
            });
        });
    }

    ORVGEN_DCT4_INLINE static void splitPairsInAnyOrder(V low, V high, V& re, V& im) {
        re = _mm512_shuffle_ps(low, high, 0x88);
        im = _mm512_shuffle_ps(low, high, 0xdd);
    }
    ORVGEN_DCT4_INLINE static void joinPairsInAnyOrder(V re, V im, V& low, V& high) {
        low = _mm512_unpacklo_ps(re, im);
        high = _mm512_unpackhi_ps(re, im);
    }
    ORVGEN_DCT4_INLINE static void splitPairs(V low, V high, V& re, V& im) {
        const __m512i even =
            _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
        const __m512i odd =
            _mm512_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
        re = _mm512_permutex2var_ps(low, even, high);
        im = _mm512_permutex2var_ps(low, odd, high);
    }
    ORVGEN_DCT4_INLINE static void joinPairs(V re, V im, V& low, V& high) {
        const __m512i first =
            _mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
        const __m512i second =
            _mm512_setr_epi32(8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
        low = _mm512_permutex2var_ps(re, first, im);
        high = _mm512_permutex2var_ps(re, second, im);
    }

    // Numbers from anywhere side by side: at(Index<l>) is where number l stands.
    template <class At>
    ORVGEN_DCT4_INLINE static V gatherNumbers(const At& at) {
        V v = _mm512_castps128_ps512(four(Index<0>{}, at));
        v = _mm512_insertf32x4(v, four(Index<4>{}, at), 1);
        v = _mm512_insertf32x4(v, four(Index<8>{}, at), 2);
        return _mm512_insertf32x4(v, four(Index<12>{}, at), 3);
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
        unroll<16>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
                const __m128 part = _mm512_extractf32x4_ps(v, l / 4);
                _mm_store_ss(p, _mm_shuffle_ps(part, part, l % 4));
            });
        });
    }

    // Pairs from anywhere side by side: at(Index<l>) is where pair l stands.
    template <class At>
    ORVGEN_DCT4_INLINE static V gatherPairs(const At& at) {
        const auto four = [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            const __m128 low = pairs(at(l), at(Index<l + 1>{}));
            const __m128 high = pairs(at(Index<l + 2>{}), at(Index<l + 3>{}));
            return _mm256_castps_pd(_mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1));
        };
        return _mm512_castpd_ps(
            _mm512_insertf64x4(_mm512_castpd256_pd512(four(Index<0>{})), four(Index<4>{}), 1));
    }
    // And back; put(Index<l>, write) as in fromSlots.
    template <class Put>
    ORVGEN_DCT4_INLINE static void scatterPairs(V v, const Put& put) {
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l / 2;
            put(l, [&](float* p) ORVGEN_DCT4_INLINE_LAMBDA {
                const __m128 two = _mm512_extractf32x4_ps(v, part);
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
    using V = __m512d;
    static constexpr int lanes = 8;

    static V load(const double* p) { return _mm512_loadu_pd(p); }
    static void store(double* p, V v) { _mm512_storeu_pd(p, v); }
    static V zero() { return _mm512_setzero_pd(); }
    static V spread(double x) { return _mm512_set1_pd(x); }

    ORVGEN_DCT4_INLINE static void transpose(V (&v)[8]) {
        V u[8];
        unroll<4>([&](auto q) ORVGEN_DCT4_INLINE_LAMBDA {
            u[2 * q] = _mm512_unpacklo_pd(v[2 * q], v[2 * q + 1]);
            u[2 * q + 1] = _mm512_unpackhi_pd(v[2 * q], v[2 * q + 1]);
        });
        unroll<2>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
            const V a = _mm512_shuffle_f64x2(u[c], u[2 + c], 0x88);
            const V b = _mm512_shuffle_f64x2(u[c], u[2 + c], 0xdd);
            const V e = _mm512_shuffle_f64x2(u[4 + c], u[6 + c], 0x88);
            const V f = _mm512_shuffle_f64x2(u[4 + c], u[6 + c], 0xdd);
            v[c] = _mm512_shuffle_f64x2(a, e, 0x88);
            v[2 + c] = _mm512_shuffle_f64x2(b, f, 0x88);
            v[4 + c] = _mm512_shuffle_f64x2(a, e, 0xdd);
            v[6 + c] = _mm512_shuffle_f64x2(b, f, 0xdd);
        });
    }

    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<8>, const Row& row, double* to) {
        V v[8];
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA { v[l] = load(row(l)); });
        transpose(v);
        unroll<8>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { store(to + c * 8, v[c]); });
    }
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<4>, const Row& row, double* to) {
        const auto two = [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            return _mm512_insertf64x4(_mm512_castpd256_pd512(_mm256_loadu_pd(row(l))),
                                      _mm256_loadu_pd(row(Index<l + 2>{})), 1);
        };
        const V v[4] = {two(Index<0>{}), two(Index<1>{}), two(Index<4>{}), two(Index<5>{})};
        unroll<2>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
            const V a = c == 0 ? _mm512_unpacklo_pd(v[0], v[1]) : _mm512_unpackhi_pd(v[0], v[1]);
            const V b = c == 0 ? _mm512_unpacklo_pd(v[2], v[3]) : _mm512_unpackhi_pd(v[2], v[3]);
            store(to + c * 8, _mm512_shuffle_f64x2(a, b, 0x88));
            store(to + (2 + c) * 8, _mm512_shuffle_f64x2(a, b, 0xdd));
        });
    }
    template <class Row>
    ORVGEN_DCT4_INLINE static void toSlots(Index<2>, const Row& row, double* to) {
        const auto four = [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            V v = _mm512_castpd128_pd512(_mm_loadu_pd(row(l)));
            v = _mm512_insertf64x2(v, _mm_loadu_pd(row(Index<l + 2>{})), 1);
            v = _mm512_insertf64x2(v, _mm_loadu_pd(row(Index<l + 4>{})), 2);
            return _mm512_insertf64x2(v, _mm_loadu_pd(row(Index<l + 6>{})), 3);
        };
        const V a = four(Index<0>{}), b = four(Index<1>{});
        store(to, _mm512_unpacklo_pd(a, b));
        store(to + 8, _mm512_unpackhi_pd(a, b));
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<8>, const double* from, const Put& put) {
        V v[8];
        unroll<8>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = load(from + c * 8); });
        transpose(v);
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            put(l, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA { store(p, v[l]); });
        });
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<4>, const double* from, const Put& put) {
        V v[4];
        unroll<4>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA { v[c] = load(from + c * 8); });
        const __m512i low = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11);
        const __m512i high = _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15);
        unroll<2>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
            const V a = c == 0 ? _mm512_unpacklo_pd(v[0], v[1]) : _mm512_unpackhi_pd(v[0], v[1]);
            const V b = c == 0 ? _mm512_unpacklo_pd(v[2], v[3]) : _mm512_unpackhi_pd(v[2], v[3]);
            putHalves<c>(_mm512_permutex2var_pd(a, low, b), put);
            putHalves<c + 4>(_mm512_permutex2var_pd(a, high, b), put);
        });
    }
    // Rows l and l + 2.
    template <int l, class Put>
    ORVGEN_DCT4_INLINE static void putHalves(V v, const Put& put) {
        put(Index<l>{}, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA {
            _mm256_storeu_pd(p, _mm512_castpd512_pd256(v));
        });
        put(Index<l + 2>{}, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA {
            _mm256_storeu_pd(p, _mm512_extractf64x4_pd(v, 1));
        });
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void fromSlots(Index<2>, const double* from, const Put& put) {
        const V x = load(from), y = load(from + 8);
        const V v[2] = {_mm512_unpacklo_pd(x, y), _mm512_unpackhi_pd(x, y)};
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l / 2;
            put(l, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA {
                _mm_storeu_pd(p, _mm512_extractf64x2_pd(v[l % 2], part));
            });
        });
    }

    ORVGEN_DCT4_INLINE static void splitPairsInAnyOrder(V low, V high, V& re, V& im) {
        re = _mm512_unpacklo_pd(low, high);
        im = _mm512_unpackhi_pd(low, high);
    }
    ORVGEN_DCT4_INLINE static void joinPairsInAnyOrder(V re, V im, V& low, V& high) {
        splitPairsInAnyOrder(re, im, low, high);
    }
    ORVGEN_DCT4_INLINE static void splitPairs(V low, V high, V& re, V& im) {
        re = _mm512_permutex2var_pd(low, _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14), high);
        im = _mm512_permutex2var_pd(low, _mm512_setr_epi64(1, 3, 5, 7, 9, 11, 13, 15), high);
    }
    ORVGEN_DCT4_INLINE static void joinPairs(V re, V im, V& low, V& high) {
        low = _mm512_permutex2var_pd(re, _mm512_setr_epi64(0, 8, 1, 9, 2, 10, 3, 11), im);
        high = _mm512_permutex2var_pd(re, _mm512_setr_epi64(4, 12, 5, 13, 6, 14, 7, 15), im);
    }

    template <class At>
    ORVGEN_DCT4_INLINE static V gatherNumbers(const At& at) {
        V v = _mm512_castpd128_pd512(two(Index<0>{}, at));
        v = _mm512_insertf64x2(v, two(Index<2>{}, at), 1);
        v = _mm512_insertf64x2(v, two(Index<4>{}, at), 2);
        return _mm512_insertf64x2(v, two(Index<6>{}, at), 3);
    }
    template <int l, class At>
    ORVGEN_DCT4_INLINE static __m128d two(Index<l>, const At& at) {
        return _mm_loadh_pd(_mm_load_sd(at(Index<l>{})), at(Index<l + 1>{}));
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void scatterNumbers(V v, const Put& put) {
        unroll<8>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            put(l, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA {
                const __m128d part = _mm512_extractf64x2_pd(v, l / 2);
                if constexpr (l % 2 == 0)
                    _mm_storel_pd(p, part);
                else
                    _mm_storeh_pd(p, part);
            });
        });
    }
    template <class At>
    ORVGEN_DCT4_INLINE static V gatherPairs(const At& at) {
        const auto two = [&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(at(l))),
                                        _mm_loadu_pd(at(Index<l + 1>{})), 1);
        };
        return _mm512_insertf64x4(_mm512_castpd256_pd512(two(Index<0>{})), two(Index<2>{}), 1);
    }
    template <class Put>
    ORVGEN_DCT4_INLINE static void scatterPairs(V v, const Put& put) {
        unroll<4>([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int part = l;
            put(l, [&](double* p) ORVGEN_DCT4_INLINE_LAMBDA {
                _mm_storeu_pd(p, _mm512_extractf64x2_pd(v, part));
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
