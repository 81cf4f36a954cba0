// SPDX-License-Identifier: MIT
// The second stage over one block: from r complex values V_p to 2r real results
//
//   Y_u = sum over p of Re(V_p exp(i pi u (2p + 1) / (2r))),   u = -r .. r - 1
//
// the transpose of the odd-frequency transform. Radix 2 for r = 4, 8, 16; radix 4 for r = 32, whose
// two levels then read as 8 times a 4-point transpose and a 4-point butterfly.
//
//   r    add  sub  products, with the twiddle of V     r    add  sub  products
//   1      1    1     4                                8     44   44    72
//   2      5    5    10                               16    112  112   176
//   4     16   16    28                               32    256  256   352
#pragma once

#include "dct4/flows/butterflies.h"

namespace orvgen::dct4 {

// V(Index<p>) gives a value and is called once for each p, in the visiting order of the tables;
// put(Index<u>, Y) takes a result.
template <int r, class T, class Value, class Put>
ORVGEN_DCT4_INLINE void stageTwo(const Value& V, const Put& put);

template <class T, class Value, class Put>
ORVGEN_DCT4_INLINE void stageTwo32(const Value& V, const Put& put) {
    // U[s][t][a]: frequencies 4 (4u + t) + s, inputs a = 0, 1 of the last 2-point level
    Complex<T> U[4][4][2];
    unroll<2>([&](auto a) ORVGEN_DCT4_INLINE_LAMBDA {
        Complex<T> W[4][4];
        unroll<4>([&](auto h) ORVGEN_DCT4_INLINE_LAMBDA {
            constexpr int j = a + 4 * h;
            // The transpose of the 4-point join over (V_j, V_16+j, V_31-j, V_15-j).
            const Complex<T> A = V(Index<j>{}), C = V(Index<31 - j>{});
            const Complex<T> E = plusConj(A, C), F = minusConj(A, C);
            const Complex<T> B = V(Index<16 + j>{}), D = V(Index<15 - j>{});
            const Complex<T> G = plusConj(B, D), H = minusConj(B, D);
            W[0][h] = E + G;
            W[1][h] = rotate<2 * j + 1, 64>(plusI(F, H));
            W[2][h] = rotate<2 * (2 * j + 1), 64>(E - G);
            W[3][h] = rotate<3 * (2 * j + 1), 64>(minusI(F, H));
        });
        unroll<4>([&](auto s) ORVGEN_DCT4_INLINE_LAMBDA {
            Complex<T> X[4];
            butterfly(W[s], X);
            U[s][0][a] = X[0];
            U[s][1][a] = rotate<2 * a + 1, 16>(X[1]);
            U[s][2][a] = rotate<2 * (2 * a + 1), 16>(X[2]);
            U[s][3][a] = rotate<3 * (2 * a + 1), 16>(X[3]);
        });
    });
    unroll<16>([&](auto st) ORVGEN_DCT4_INLINE_LAMBDA {
        constexpr int s = st / 4, t = st % 4;
        stageTwo<2, T>([&](auto a) ORVGEN_DCT4_INLINE_LAMBDA { return U[s][t][a]; },
                       [&](auto u, T value)
                           ORVGEN_DCT4_INLINE_LAMBDA { put(Index<4 * (4 * u + t) + s>{}, value); });
    });
}

template <int r, class T, class Value, class Put>
ORVGEN_DCT4_INLINE void stageTwo(const Value& V, const Put& put) {
    if constexpr (r == 1) {
        const Complex<T> v = V(Index<0>{});
        put(Index<0>{}, v.re);
        put(Index<-1>{}, v.im);
    } else if constexpr (r == 2) {
        const Complex<T> v0 = V(Index<0>{}), v1 = V(Index<1>{});
        const T a = timesK(v0.re - v1.re), b = timesK(v0.im + v1.im);
        put(Index<0>{}, v0.re + v1.re);
        put(Index<1>{}, a - b);
        put(Index<-1>{}, a + b);
        put(Index<-2>{}, v0.im - v1.im);
    } else if constexpr (r == 32) {
        stageTwo32<T>(V, put);
    } else {
        // The transpose of the 2-point join: even frequencies from L0, odd ones from L1.
        Complex<T> even[r / 2], odd[r / 2];
        unroll<r / 2>([&](auto p) ORVGEN_DCT4_INLINE_LAMBDA {
            const Complex<T> v = V(p), w = V(Index<r - 1 - p>{});
            even[p] = plusConj(v, w);
            odd[p] = rotate<2 * p + 1, 2 * r>(minusConj(v, w));
        });
        stageTwo<r / 2, T>([&](auto p) ORVGEN_DCT4_INLINE_LAMBDA { return even[p]; },
                           [&](auto u, T value)
                               ORVGEN_DCT4_INLINE_LAMBDA { put(Index<2 * u>{}, value); });
        stageTwo<r / 2, T>([&](auto p) ORVGEN_DCT4_INLINE_LAMBDA { return odd[p]; },
                           [&](auto u, T value)
                               ORVGEN_DCT4_INLINE_LAMBDA { put(Index<2 * u + 1>{}, value); });
    }
}

}  // namespace orvgen::dct4
