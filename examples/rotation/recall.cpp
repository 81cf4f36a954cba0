// SPDX-License-Identifier: MIT
#include "recall.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace {

constexpr std::size_t wanted = 10;
constexpr std::size_t queryEvery = 16;

// The numbers of the nearest vectors but the query's own.
std::array<std::size_t, wanted> nearest(const float* query, const Vectors& among,
                                        std::size_t self) {
    std::vector<float> product(among.count());
    for (std::size_t v = 0; v < among.count(); ++v)
        product[v] = v == self ? -2 : std::inner_product(query, query + among.size, among[v], 0.0F);
    std::vector<std::size_t> order(among.count());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::partial_sort(order.begin(), order.begin() + wanted, order.end(), [&](auto a, auto b) {
        return product[a] != product[b] ? product[a] > product[b] : a < b;
    });
    std::array<std::size_t, wanted> found;
    std::copy_n(order.begin(), wanted, found.begin());
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace

Vectors quantised(const Vectors& vectors, int bits) {
    // For unit variance, after J. Max, Quantizing for minimum distortion, 1960.
    constexpr float steps[] = {0, 1.596F, 0.9957F, 0.5860F, 0.3352F};
    const float last = static_cast<float>(1 << (bits - 1)) - 0.5F;
    Vectors q = vectors;
    for (std::size_t v = 0; v < q.count(); ++v) {
        float* x = &q.elements[v * q.size];
        const float square = std::inner_product(x, x + q.size, x, 0.0F);
        const float step = steps[bits] * std::sqrt(square / static_cast<float>(q.size)) + 1e-30F;
        for (std::size_t i = 0; i < q.size; ++i)
            x[i] = std::clamp(std::floor(x[i] / step) + 0.5F, -last, last) * step;
    }
    return q;
}

double recall(const Vectors& exact, const Vectors& stored) {
    std::size_t found = 0, queries = 0;
    for (std::size_t v = 0; v < exact.count(); v += queryEvery, ++queries) {
        const auto true10 = nearest(exact[v], exact, v), found10 = nearest(exact[v], stored, v);
        std::vector<std::size_t> both;
        std::set_intersection(true10.begin(), true10.end(), found10.begin(), found10.end(),
                              std::back_inserter(both));
        found += both.size();
    }
    return static_cast<double>(found) / static_cast<double>(wanted * queries);
}
