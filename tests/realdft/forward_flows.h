// Small things that the tests of the forward real flows share.
#pragma once

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "kernelgen/evaluate.h"
#include "realdft/forward.h"

namespace orvgen::test {

using kernelgen::Arithmetic;
using kernelgen::Graph;
using Format = realdft::PackedFormat;

template <class T>
inline constexpr Arithmetic arithmeticOf = sizeof(T) == 4 ? Arithmetic::Single : Arithmetic::Double;

inline std::uint32_t bitsOf(float v) {
    std::uint32_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}
inline std::uint64_t bitsOf(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}
// Equal in every bit; any NaN equals any NaN.
template <class T>
bool sameBits(T a, T b) {
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

// The three factors that the flags select, as the kernels store them.
template <class T>
std::vector<double> storedScales(int n) {
    if (sizeof(T) == 4)
        return {1.0, static_cast<double>(static_cast<float>(1.0 / n)),
                static_cast<double>(static_cast<float>(1.0 / std::sqrt(static_cast<double>(n))))};
    return {1.0, 1.0 / n, 1.0 / std::sqrt(static_cast<double>(n))};
}

// What no kernel writes by itself: a NaN with a mark in it.
template <class T>
T poison() {
    if constexpr (sizeof(T) == 4) {
        const std::uint32_t b = 0x7fc5a5a5u;
        float v;
        std::memcpy(&v, &b, sizeof v);
        return v;
    } else {
        const std::uint64_t b = 0x7ff85a5a5a5a5a5aull;
        double v;
        std::memcpy(&v, &b, sizeof v);
        return v;
    }
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
