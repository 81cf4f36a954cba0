// SPDX-License-Identifier: MIT
// The odd-frequency transform of n = 2m real samples w(t), t = 0 .. n - 1, where t >= m stands for
// u = t - n:
//
//   Z(c) = sum over u of w[u] exp(i pi u (2c + 1) / n),   c = 0 .. m - 1
//
// Sizes 2 and 4 are direct. A larger size takes the samples apart with radix R = 2 at n = 8 and
// R = 4 beyond, w_s(v) = w(s + R v), and joins the transforms Z_s of size n / R: with
// D(f) = sum over s of Z_s(d) exp(i pi s (2d + 1) / n) exp(2 pi i s f / R) and m' = n / (2R),
// Z(2m' f + d) = D(f) for f < R/2 and Z(2m' (R - 1 - f) + 2m' - 1 - d) = conj D(f) beyond.
//
//   n     add  sub  products      n     add  sub  products
//   2       0    1     0          16     34   34    32
//   4       3    3     2          32     92   92    96
//   8      12   12    12          64    224  224   224
#pragma once

#include "dct4/flows/butterflies.h"

namespace orvgen::dct4 {

// w(Index<t>) gives a sample; put(Index<c>, Z) takes a result.
template <int n, class T, class Sample, class Put>
ORVGEN_DCT4_INLINE void oddFrequency(const Sample& w, const Put& put) {
    if constexpr (n == 2) {
        put(Index<0>{}, Complex<T>{w(Index<0>{}), Values<T>::zero() - w(Index<1>{})});
    } else if constexpr (n == 4) {
        const T w0 = w(Index<0>{}), w1 = w(Index<1>{}), w2 = w(Index<2>{}), w3 = w(Index<3>{});
        const T p = timesK(w1 + w3), q = timesK(w1 - w3);
        put(Index<0>{}, Complex<T>{w0 + p, q - w2});
        put(Index<1>{}, Complex<T>{w0 - p, q + w2});
    } else {
        constexpr int R = n == 8 ? 2 : 4;
        constexpr int m = n / (2 * R);
        Complex<T> z[R][m];
        unroll<R>([&](auto s) ORVGEN_DCT4_INLINE_LAMBDA {
            oddFrequency<n / R, T>(
                [&](auto v) ORVGEN_DCT4_INLINE_LAMBDA { return w(Index<s + R * v>{}); },
                [&](auto d, Complex<T> value) ORVGEN_DCT4_INLINE_LAMBDA { z[s][d] = value; });
        });
        unroll<m>([&](auto d) ORVGEN_DCT4_INLINE_LAMBDA {
            Complex<T> v[R];
            v[0] = z[0][d];
            unroll<R - 1>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
                constexpr int s = i + 1;
                v[s] = rotate<s*(2 * d + 1), n>(z[s][d]);
            });
            Complex<T> D[R];
            join(v, D);
            unroll<R>([&](auto f) ORVGEN_DCT4_INLINE_LAMBDA {
                constexpr int c = f < R / 2 ? 2 * m * f + d : 2 * m * (R - 1 - f) + 2 * m - 1 - d;
                put(Index<c>{}, D[f]);
            });
        });
    }
}

}  // namespace orvgen::dct4
