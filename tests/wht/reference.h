// SPDX-License-Identifier: MIT
// The Walsh-Hadamard transform as it is defined to round: layer by layer over the bits of the
// index, in the element type, and one product at the end.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/data_table.h"

namespace orvgen::test {

// Layers first to last - 1 on the 2^order elements of a.
template <class T>
void applyLayers(std::vector<T>& a, int first, int last) {
    for (int b = first; b < last; ++b) {
        const std::size_t distance = std::size_t{1} << b;
        for (std::size_t p = 0; p < a.size(); ++p) {
            if (p & distance) continue;
            const T sum = a[p] + a[p + distance];
            const T difference = a[p] - a[p + distance];
            a[p] = sum;
            a[p + distance] = difference;
        }
    }
}

template <class T>
void referenceTransform(const T* x, T* y, int order, T scale) {
    std::vector<T> a(x, x + (std::size_t{1} << order));
    applyLayers(a, 0, order);
    for (std::size_t i = 0; i < a.size(); ++i) y[i] = a[i] * scale;
}

template <class T>
constexpr bool isSingle = sizeof(T) == 4;

template <class T>
constexpr const char* typeName = isSingle<T> ? "f32" : "f64";

// The factor that a flag selects.
template <class T>
T scaleOf(int order, std::int32_t flag) {
    if (flag == 8) return T{1};
    if (flag != 4) return T{1} / static_cast<T>(1 << order);
    const unsigned long long bits =
        dataTable("wht_root_scales").row("order", order).bits(typeName<T>);
    if constexpr (isSingle<T>)
        return std::bit_cast<T>(static_cast<std::uint32_t>(bits));
    else
        return std::bit_cast<T>(static_cast<std::uint64_t>(bits));
}

}  // namespace orvgen::test
