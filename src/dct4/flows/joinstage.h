// SPDX-License-Identifier: MIT
// The join of a recursion level, for one result number d of the inner transforms:
//
//   D(f) = sum over s of Z_s(d) exp(i pi s (2d + 1) / n) exp(2 pi i s f / R),   f = 0 .. R - 1
//
// given as it is for f < R/2 and conjugated beyond. For R = 16 and 32 in two levels: with
// s = s1 + 4 s2 and f = g + h R/4, butterflies of R/4 points over s2 with the twiddles of the
// second table, then 4-point joins over s1 with those of the first.
//
//   R    add  sub  products  twiddle vectors
//   2      3    3     4          2
//   4     11   11    12          6
//   8     33   33    32         14
//   16    88   88    96         30
//   32   220  220   224         62
#pragma once

#include "dct4/flows/butterflies.h"

namespace orvgen::dct4 {

// Z(Index<s>) gives a value; first(z) and second(z, Index<k>) rotate z, the first by the next
// twiddle of its table, the second by the k-th of its table; put(Index<f>, D) takes a result.
template <int R, class T, class Value, class First, class Second, class Put>
ORVGEN_DCT4_INLINE void joinStage(const Value& Z, const First& first, const Second& second,
                                  const Put& put) {
    if constexpr (R <= 8) {
        Complex<T> v[R];
        v[0] = Z(Index<0>{});
        unroll<R - 1>([&](auto i)
                          ORVGEN_DCT4_INLINE_LAMBDA { v[i + 1] = first(Z(Index<i + 1>{})); });
        Complex<T> D[R];
        join(v, D);
        unroll<R>([&](auto f) ORVGEN_DCT4_INLINE_LAMBDA { put(f, D[f]); });
    } else {
        constexpr int inner = R / 4;
        Complex<T> y[4][inner];
        unroll<4>([&](auto s1) ORVGEN_DCT4_INLINE_LAMBDA {
            Complex<T> v[inner];
            v[0] = Z(s1);
            unroll<inner - 1>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
                v[i + 1] = second(Z(Index<s1 + 4 * (i + 1)>{}), Index<i + 1>{});
            });
            butterfly(v, y[s1]);
        });
        unroll<inner>([&](auto g) ORVGEN_DCT4_INLINE_LAMBDA {
            Complex<T> v[4];
            v[0] = y[0][g];
            v[1] = first(y[1][g]);
            v[2] = first(y[2][g]);
            v[3] = first(y[3][g]);
            Complex<T> D[4];
            join(v, D);
            unroll<4>([&](auto h) ORVGEN_DCT4_INLINE_LAMBDA { put(Index<g + inner * h>{}, D[h]); });
        });
    }
}

}  // namespace orvgen::dct4
