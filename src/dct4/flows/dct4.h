// SPDX-License-Identifier: MIT
// The DCT-IV of 2, 4, 8, 16 and 32 points,
// y[k] = sum over j of x[j] cos(pi / N (j + 1/2) (k + 1/2)).
//
//   N    products  additions and subtractions  magnitudes of multipliers
//   2        4         2                            2
//   4        8        12                            5
//   8       24        32                            7
//   16      64        88                           17
//   32     144       216                           33
//
// x(Index<j>) gives a sample; put(Index<k>, y) takes a result. No result is given before the last
// sample is taken, so that source and destination may be one array.
#pragma once

#include "dct4/flows/oddfrequency.h"
#include "dct4/flows/stagetwo.h"

namespace orvgen::dct4 {

template <class T, class Sample, class Put>
ORVGEN_DCT4_INLINE void dct4Of2(const Sample& x, const Put& put) {
    const T x0 = x(Index<0>{}), x1 = x(Index<1>{});
    const Constant<Trig::cosine, 1, 8> c;
    const Constant<Trig::sine, 1, 8> s;
    put(Index<0>{}, times(c, x0) + times(s, x1));
    put(Index<1>{}, times(s, x0) - times(c, x1));
}

// The rotation of (a, b) by num pi / 16 in three lifting steps, three products instead of four.
template <int num, class T>
ORVGEN_DCT4_INLINE Complex<T> lift(T a, T b) {
    const Constant<Trig::tangent, num, 32> t;
    const Constant<Trig::sine, num, 16> s;
    const T once = a - times(t, b);
    const T im = b + times(s, once);
    return {once - times(t, im), im};
}

template <class T, class Sample, class Put>
ORVGEN_DCT4_INLINE void dct4Of4(const Sample& x, const Put& put) {
    const T x0 = x(Index<0>{}), x1 = x(Index<1>{}), x2 = x(Index<2>{}), x3 = x(Index<3>{});
    const Complex<T> z0 = lift<7>(x0, x3), z1 = lift<5>(x1, x2);
    const T d = timesK(z0.im - z1.im), s = timesK(z0.re + z1.re);
    put(Index<0>{}, z0.im + z1.im);
    put(Index<3>{}, z0.re - z1.re);
    put(Index<1>{}, d + s);
    put(Index<2>{}, d - s);
}

constexpr int bitReversal(int number, int count) {
    int reversed = 0;
    for (int bit = 1; bit < count; bit *= 2) {
        reversed = 2 * reversed + (number & bit ? 1 : 0);
    }
    return reversed;
}

// Halves a list of L pairs by sums and rotated differences until single pairs, the leaves, are
// left; leaf(Index<l>, z) takes them, those of the sums first.
template <int L, int firstLeaf, class T, class Leaf>
ORVGEN_DCT4_INLINE void fold(const Complex<T> (&z)[L], const Leaf& leaf) {
    if constexpr (L == 1) {
        leaf(Index<firstLeaf>{}, z[0]);
    } else {
        Complex<T> p[L / 2], q[L / 2];
        unroll<L / 2>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
            p[i] = plusConj(z[i], z[L - 1 - i]);
            const Complex<T> difference = minusConj(z[i], z[L - 1 - i]);
            if constexpr (L == 2) {
                q[i] = rotateEighth(difference);
            } else {
                q[i] = rotate<2 * i + 1, 2 * L>(difference);
            }
        });
        fold<L / 2, firstLeaf>(p, leaf);
        fold<L / 2, firstLeaf + L / 2>(q, leaf);
    }
}

// N = 8 and 16. The first layer merges the rotation of every input pair with that of its partner,
// whose angle is pi / 4 minus the first.
template <int N, class T, class Sample, class Put>
ORVGEN_DCT4_INLINE void dct4Folded(const Sample& x, const Put& put) {
    constexpr int Q = N / 4;
    Complex<T> A[Q], B[Q];
    unroll<Q>([&](auto j) ORVGEN_DCT4_INLINE_LAMBDA {
        const T up = x(Index<N / 2 + j>{}), down = x(Index<N / 2 - 1 - j>{});
        const T u = timesK(up + down), v = timesK(up - down);
        const T front = x(j), back = x(Index<N - 1 - j>{});
        A[j] = rotate<2 * j + 1, 4 * N>(Complex<T>{front + u, v - back});
        B[j] = rotate<3 * (2 * j + 1), 4 * N>(Complex<T>{front - u, v + back});
    });
    fold<Q, 0>(A, [&](auto l, Complex<T> z) ORVGEN_DCT4_INLINE_LAMBDA {
        constexpr int r = bitReversal(l, Q);
        put(Index<4 * r>{}, z.re);
        put(Index<N - 1 - 4 * r>{}, z.im);
    });
    fold<Q, 0>(B, [&](auto l, Complex<T> z) ORVGEN_DCT4_INLINE_LAMBDA {
        constexpr int r = bitReversal(l, Q);
        put(Index<4 * r + 1>{}, z.re);
        put(Index<N - 2 - 4 * r>{}, z.im);
    });
}

// N = 32: the two stages of a plan with r = 2 and m = 8, all constants built in. The coarse
// rotations, those of the 16-point transforms, come before the fine ones of the twiddle.
template <class T, class Sample, class Put>
ORVGEN_DCT4_INLINE void dct4Of32(const Sample& x, const Put& put) {
    Complex<T> Z[2][8];
    unroll<2>([&](auto p) ORVGEN_DCT4_INLINE_LAMBDA {
        oddFrequency<16, T>(
            [&](auto t) ORVGEN_DCT4_INLINE_LAMBDA {
                return x(Index < t < 8 ? 4 * t + p : 63 - (4 * t + p) > {});
            },
            [&](auto c, Complex<T> value) ORVGEN_DCT4_INLINE_LAMBDA { Z[p][c] = value; });
    });
    unroll<8>([&](auto c) ORVGEN_DCT4_INLINE_LAMBDA {
        stageTwo<2, T>(
            [&](auto p) ORVGEN_DCT4_INLINE_LAMBDA {
                return rotate<(2 * p + 1) * (2 * c + 1), 128>(Z[p][c]);
            },
            [&](auto u, T value) ORVGEN_DCT4_INLINE_LAMBDA {
                put(Index < u >= 0 ? 16 * u + c : 63 - (16 * (u + 4) + c) > {}, value);
            });
    });
}

template <int N, class T, class Sample, class Put>
ORVGEN_DCT4_INLINE void dct4(const Sample& x, const Put& put) {
    if constexpr (N == 2) {
        dct4Of2<T>(x, put);
    } else if constexpr (N == 4) {
        dct4Of4<T>(x, put);
    } else if constexpr (N == 32) {
        dct4Of32<T>(x, put);
    } else {
        dct4Folded<N, T>(x, put);
    }
}

}  // namespace orvgen::dct4
