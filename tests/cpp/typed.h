// SPDX-License-Identifier: MIT
// What the tests of the C++ headers share: samples, and arrays of which every byte is compared.
#pragma once

#include <gtest/gtest.h>

#include <complex>
#include <cstddef>
#include <cstring>
#include <orvgen.hpp>
#include <random>
#include <vector>

namespace orvgen::test {

inline constexpr Scale allScales[] = {Scale::fwdByN, Scale::invByN, Scale::bySqrtN, Scale::none};

// The real numbers in one element of the C interface.
template <class E>
inline constexpr std::size_t realsIn = detail::ComplexElement<E> ? 2 : 1;
template <class E>
struct RealOf {
    using Type = E;
};
template <>
struct RealOf<Orv32fc> {
    using Type = float;
};
template <>
struct RealOf<Orv64fc> {
    using Type = double;
};

// `count` elements from -1 to 1, the same for the same seed.
template <class E>
std::vector<E> samples(std::size_t count, unsigned seed) {
    using R = typename RealOf<E>::Type;
    std::mt19937 engine(seed);
    std::uniform_real_distribution<R> any(-1, 1);
    std::vector<R> reals(count * realsIn<E>);
    for (R& real : reals) real = any(engine);
    std::vector<E> values(count);
    std::memcpy(values.data(), reals.data(), reals.size() * sizeof(R));
    return values;
}

// A destination that holds what no transform writes: NaN of a payload of its own.
template <class E>
std::vector<E> poison(std::size_t count) {
    std::vector<E> values(count);
    std::memset(static_cast<void*>(values.data()), 0xFF, count * sizeof(E));
    return values;
}

template <class A, class B>
bool sameBytes(const A& a, const B& b) {
    return std::size(a) * sizeof(*std::data(a)) == std::size(b) * sizeof(*std::data(b)) &&
           std::memcmp(std::data(a), std::data(b), std::size(a) * sizeof(*std::data(a))) == 0;
}

// The element of the C interface as std::complex.
template <class E>
using Standard = std::complex<typename RealOf<E>::Type>;

}  // namespace orvgen::test
