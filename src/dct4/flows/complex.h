// SPDX-License-Identifier: MIT
// The blocks that the kernels are made of. A kernel is written once over a value type T: a number,
// a vector of lanes, or in the tests a value that counts, traces or computes in higher precision.
// The order of operands and the choice between + and - are part of every kernel: nothing here may
// be rearranged.
#pragma once

#include <type_traits>
#include <utility>

#include "dct4/flows/constants.h"

// Everything of a kernel is inlined into one straight-line body.
#define ORVGEN_DCT4_INLINE [[gnu::always_inline]] inline
#define ORVGEN_DCT4_INLINE_LAMBDA __attribute__((always_inline))

namespace orvgen::dct4 {

template <int i>
using Index = std::integral_constant<int, i>;

// body(Index<0>), .. body(Index<count - 1>), written out.
template <int count, class Body>
ORVGEN_DCT4_INLINE void unroll(Body&& body) {
    [&]<int... i>(std::integer_sequence<int, i...>) ORVGEN_DCT4_INLINE_LAMBDA {
        (body(Index<i>{}), ...);
    }
    (std::make_integer_sequence<int, count>{});
}

template <class T>
struct Complex {
    T re, im;
};

template <class T, Trig which, int num, int den>
ORVGEN_DCT4_INLINE T times(Constant<which, num, den> constant, T x) {
    return Values<T>::of(constant) * x;
}

// k = cos(pi / 4)
template <class T>
ORVGEN_DCT4_INLINE T timesK(T x) {
    return times(Constant<Trig::cosine, 1, 4>{}, x);
}

// z exp(i h) with (c, s) = (cos h, sin h): 2 additions, 4 products, each product rounded before
// the sum.
template <class T>
ORVGEN_DCT4_INLINE Complex<T> rotate(Complex<T> z, T c, T s) {
    return {c * z.re - s * z.im, s * z.re + c * z.im};
}

// z exp(i num pi / den)
template <int num, int den, class T>
ORVGEN_DCT4_INLINE Complex<T> rotate(Complex<T> z) {
    return rotate(z, Values<T>::of(Constant<Trig::cosine, num, den>{}),
                  Values<T>::of(Constant<Trig::sine, num, den>{}));
}

// z exp(i pi / 4) in two products.
template <class T>
ORVGEN_DCT4_INLINE Complex<T> rotateEighth(Complex<T> z) {
    const T re = timesK(z.re), im = timesK(z.im);
    return {re - im, re + im};
}

template <class T>
ORVGEN_DCT4_INLINE Complex<T> operator+(Complex<T> z, Complex<T> w) {
    return {z.re + w.re, z.im + w.im};
}

template <class T>
ORVGEN_DCT4_INLINE Complex<T> operator-(Complex<T> z, Complex<T> w) {
    return {z.re - w.re, z.im - w.im};
}

// z + i w and z - i w
template <class T>
ORVGEN_DCT4_INLINE Complex<T> plusI(Complex<T> z, Complex<T> w) {
    return {z.re - w.im, z.im + w.re};
}

template <class T>
ORVGEN_DCT4_INLINE Complex<T> minusI(Complex<T> z, Complex<T> w) {
    return {z.re + w.im, z.im - w.re};
}

// z + conj w and z - conj w
template <class T>
ORVGEN_DCT4_INLINE Complex<T> plusConj(Complex<T> z, Complex<T> w) {
    return {z.re + w.re, z.im - w.im};
}

template <class T>
ORVGEN_DCT4_INLINE Complex<T> minusConj(Complex<T> z, Complex<T> w) {
    return {z.re - w.re, z.im + w.im};
}

// conj(z - w) and conj(z - i w)
template <class T>
ORVGEN_DCT4_INLINE Complex<T> conjMinus(Complex<T> z, Complex<T> w) {
    return {z.re - w.re, w.im - z.im};
}

template <class T>
ORVGEN_DCT4_INLINE Complex<T> conjMinusI(Complex<T> z, Complex<T> w) {
    return {z.re + w.im, w.re - z.im};
}

}  // namespace orvgen::dct4
