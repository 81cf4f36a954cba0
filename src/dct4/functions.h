// SPDX-License-Identifier: MIT
// The function objects: where the values of the tables come from.
#pragma once

#include "dct4/operations.h"
#include "dct4/trig.h"

namespace orvgen::dct4 {

template <class Real>
void setUp(EnvfCompose<Real>& object, std::int32_t r, std::int32_t length) {
    object.unused1 = 2 * r;
    object.eightLengths = wrapped(8 * std::int64_t{length});
    object.unused2 = length / (2 * r);
    object.r = r;
    object.step = 2 * r;
}

// With i the block c and j = 2p or 2p + 1: cosine or sine of g(p, c) = pi (2p + 1)(2c + 1) / (4N).
// Numerator and denominator are converted to the family's type before the division, so that in the
// 32-bit family a numerator above 2^24 loses bits.
template <class Real>
double valueAt(const EnvfCompose<Real>& object, std::int32_t i, std::int32_t j, std::int32_t) {
    const std::int32_t index = i * object.step + j;
    const std::int32_t h = index / 2;
    const std::int32_t a = h / object.r;
    const std::int32_t b = h % object.r;
    const std::int32_t numerator = 2 * (2 * a + 1) * (2 * b + 1);
    const Real quotient = static_cast<Real>(numerator) / static_cast<Real>(object.eightLengths);
    return static_cast<double>(index % 2 == 0 ? cosPi(quotient) : sinPi(quotient));
}

template <class Real>
void setUp(EnvfSplit<Real>& object, std::int32_t blockLength, std::int32_t groups,
           const NodeHeader* inner) {
    object.unused1 = blockLength;
    object.unused2 = groups;
    object.inner = inner;
}

// The inner function at block lanes * i + j.
template <class Real>
double valueAt(const EnvfSplit<Real>& object, std::int32_t i, std::int32_t j, std::int32_t k) {
    return owng_TFunc_IIIR_at(object.inner, lanes<Real> * i + j, k, 0);
}

template <class Real>
void setUp(EnvLambda<Real>& object, std::int32_t n, std::int32_t r) {
    object.n = n;
    object.r = r;
}

// (i + 1/2) / n' in the family's type.
template <class Real>
double valueAt(const EnvLambda<Real>& object, std::int32_t i, std::int32_t, std::int32_t) {
    const std::int32_t innerN = object.n / object.r;
    const Real half = static_cast<Real>(0.5);
    return static_cast<double>((static_cast<Real>(i) + half) / static_cast<Real>(innerN));
}

// _at of a function object.
template <class Function>
double evaluate(const NodeHeader* object, std::int32_t i, std::int32_t j, std::int32_t k) {
    return valueAt(*static_cast<const Function*>(object), i, j, k);
}

}  // namespace orvgen::dct4
