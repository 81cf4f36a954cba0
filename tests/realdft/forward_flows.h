// SPDX-License-Identifier: MIT
// Small things that the tests of the forward real flows share.
#pragma once

#include <bit>
#include <cfenv>
#include <cstdint>
#include <limits>

#include "realdft/forward.h"
#include "support/flow_runs.h"

namespace orvgen::test {

using kernelgen::Arithmetic;
using kernelgen::Graph;
using Format = realdft::PackedFormat;

inline std::uint32_t bitsOf(float v) { return std::bit_cast<std::uint32_t>(v); }
inline std::uint64_t bitsOf(double v) { return std::bit_cast<std::uint64_t>(v); }

// What no kernel writes by itself: a NaN with a mark in it.
template <class T>
T poison() {
    if constexpr (isSingle<T>)
        return std::bit_cast<float>(0x7fc5a5a5U);
    else
        return std::bit_cast<double>(0x7ff85a5a5a5a5a5aULL);
}

// The packed array, with a margin of poison behind it.
inline constexpr int kMargin = 4;
template <class T>
std::vector<T> run(const Graph& graph, Format format, int n, const std::vector<T>& x,
                   double scale = 1.0) {
    std::vector<T> y(static_cast<std::size_t>(realdft::elementCount(format, n) + kMargin),
                     poison<T>());
    kernelgen::evaluate(graph, x.data(), y.data(), scale);
    return y;
}

// Samples of mixed magnitude; every eighth one a special value where asked for.
template <class T>
std::vector<T> samples(int n, unsigned seed, bool special = false) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-8, 8);
    std::uniform_int_distribution<int> choice(0, 63);
    const std::vector<T> specials = {T(0),
                                     -T(0),
                                     std::numeric_limits<T>::infinity(),
                                     -std::numeric_limits<T>::infinity(),
                                     std::numeric_limits<T>::quiet_NaN(),
                                     std::numeric_limits<T>::denorm_min(),
                                     -std::numeric_limits<T>::min(),
                                     std::numeric_limits<T>::max()};
    std::vector<T> x;
    for (int i = 0; i < n; ++i) {
        const auto pick = static_cast<std::size_t>(choice(random));
        x.push_back(special && pick < specials.size()
                        ? specials[pick]
                        : static_cast<T>(std::ldexp(mantissa(random), exponent(random))));
    }
    return x;
}

}  // namespace orvgen::test
