// SPDX-License-Identifier: MIT
// Butterflies with positive exponent: out(f) = sum over s of v(s) exp(2 pi i s f / R).
//
// The joining forms give the upper half of the outputs conjugated, which costs nothing. Cost in
// additions, subtractions, products: 2 points 2/2/0, 4 points 8/8/0, 8 points 26/26/4.
#pragma once

#include "dct4/flows/complex.h"

namespace orvgen::dct4 {

// Sums and differences of the 4-point butterfly.
template <class T>
struct FourSums {
    Complex<T> e, f, g, h;
};

template <class T>
ORVGEN_DCT4_INLINE FourSums<T> fourSums(const Complex<T> (&v)[4]) {
    return {v[0] + v[2], v[0] - v[2], v[1] + v[3], v[1] - v[3]};
}

template <class T>
ORVGEN_DCT4_INLINE void butterfly(const Complex<T> (&v)[4], Complex<T> (&out)[4]) {
    const FourSums<T> s = fourSums(v);
    out[0] = s.e + s.g;
    out[1] = plusI(s.f, s.h);
    out[2] = s.e - s.g;
    out[3] = minusI(s.f, s.h);
}

template <class T>
ORVGEN_DCT4_INLINE void join(const Complex<T> (&v)[2], Complex<T> (&out)[2]) {
    out[0] = v[0] + v[1];
    out[1] = conjMinus(v[0], v[1]);
}

template <class T>
ORVGEN_DCT4_INLINE void join(const Complex<T> (&v)[4], Complex<T> (&out)[4]) {
    const FourSums<T> s = fourSums(v);
    out[0] = s.e + s.g;
    out[1] = plusI(s.f, s.h);
    out[2] = conjMinus(s.e, s.g);
    out[3] = conjMinusI(s.f, s.h);
}

// The 8-point butterfly before its last layer: even and odd halves, the odd outputs 1 and 3
// multiplied by the eighth root of one (3: by the root cubed over i, the i left to the last layer).
template <class T>
struct EightHalves {
    Complex<T> even[4], odd[4];
};

template <class T>
ORVGEN_DCT4_INLINE Complex<T> timesEighthRoot(Complex<T> z) {
    return {timesK(z.re - z.im), timesK(z.re + z.im)};
}

template <class T>
ORVGEN_DCT4_INLINE EightHalves<T> eightHalves(const Complex<T> (&v)[8]) {
    EightHalves<T> halves;
    butterfly({v[0], v[2], v[4], v[6]}, halves.even);
    butterfly({v[1], v[3], v[5], v[7]}, halves.odd);
    halves.odd[1] = timesEighthRoot(halves.odd[1]);
    halves.odd[3] = timesEighthRoot(halves.odd[3]);
    return halves;
}

template <class T>
ORVGEN_DCT4_INLINE void butterfly(const Complex<T> (&v)[8], Complex<T> (&out)[8]) {
    const EightHalves<T> h = eightHalves(v);
    out[0] = h.even[0] + h.odd[0];
    out[1] = h.even[1] + h.odd[1];
    out[2] = plusI(h.even[2], h.odd[2]);
    out[3] = plusI(h.even[3], h.odd[3]);
    out[4] = h.even[0] - h.odd[0];
    out[5] = h.even[1] - h.odd[1];
    out[6] = minusI(h.even[2], h.odd[2]);
    out[7] = minusI(h.even[3], h.odd[3]);
}

template <class T>
ORVGEN_DCT4_INLINE void join(const Complex<T> (&v)[8], Complex<T> (&out)[8]) {
    const EightHalves<T> h = eightHalves(v);
    out[0] = h.even[0] + h.odd[0];
    out[1] = h.even[1] + h.odd[1];
    out[2] = plusI(h.even[2], h.odd[2]);
    out[3] = plusI(h.even[3], h.odd[3]);
    out[4] = conjMinus(h.even[0], h.odd[0]);
    out[5] = conjMinus(h.even[1], h.odd[1]);
    out[6] = conjMinusI(h.even[2], h.odd[2]);
    out[7] = conjMinusI(h.even[3], h.odd[3]);
}

}  // namespace orvgen::dct4
