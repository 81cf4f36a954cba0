// SPDX-License-Identifier: MIT
#include "direct_transform.h"

#include <cmath>
#include <map>

namespace orvgen::test {

namespace {

using Row = std::vector<Quad>;

// cos and sin of 2 pi n/N for n = 0..N-1.
struct Circle {
    Row cosine, sine;

    explicit Circle(std::size_t count) {
        const Quad pi = acosf128(-1);
        for (std::size_t n = 0; n < count; ++n) {
            const Quad angle = 2 * pi * static_cast<Quad>(n) / static_cast<Quad>(count);
            cosine.push_back(cosf128(angle));
            sine.push_back(sinf128(angle));
        }
    }
};

struct Bin {
    Quad re = 0, im = 0;
};

const Circle& circleOf(std::size_t count) {
    static std::map<std::size_t, Circle> circles;
    return circles.try_emplace(count, count).first->second;
}

// sum x[j] exp(sign 2 pi i j k/N)
std::vector<Bin> transform(const std::vector<Bin>& x, int sign) {
    const std::size_t n = x.size();
    const Circle& circle = circleOf(n);
    std::vector<Bin> y(n);
    for (std::size_t j = 0; j < n; ++j) {
        if (x[j].re == 0 && x[j].im == 0) continue;
        for (std::size_t k = 0; k < n; ++k) {
            const Quad c = circle.cosine[j * k % n];
            const Quad s = sign * circle.sine[j * k % n];
            y[k].re += x[j].re * c - x[j].im * s;
            y[k].im += x[j].re * s + x[j].im * c;
        }
    }
    return y;
}

// Positions of the real and the imaginary part of bin k; -1 where a part is not stored.
std::pair<int, int> place(Layout layout, int n, int k) {
    const bool even = n % 2 == 0;
    if (layout == Layout::Ccs) return {2 * k, 2 * k + 1};
    if (k == 0) return {0, -1};
    if (layout == Layout::Perm && even) {
        if (k == n / 2) return {1, -1};
        return {2 * k, 2 * k + 1};
    }
    if (even && k == n / 2) return {n - 1, -1};
    return {2 * k - 1, 2 * k};
}

}  // namespace

std::vector<Quad> directTransform(const ListedKernel& k, const std::vector<Quad>& src) {
    const auto n = static_cast<std::size_t>(k.length);
    const int sign = k.info->direction == Direction::Inverse ? 1 : -1;
    std::vector<Bin> x(n);
    std::vector<Quad> dst(k.dstCount, 0);
    if (k.complex) {
        for (std::size_t j = 0; j < n; ++j) x[j] = {src[2 * j], src[2 * j + 1]};
        const std::vector<Bin> y = transform(x, sign);
        for (std::size_t j = 0; j < n; ++j) {
            dst[2 * j] = y[j].re;
            dst[2 * j + 1] = y[j].im;
        }
        return dst;
    }
    if (sign > 0) {  // half spectrum to samples
        for (int b = 0; b <= k.length / 2; ++b) {
            const auto [re, im] = place(k.info->src, k.length, b);
            const bool real = b == 0 || 2 * b == k.length;
            const auto at = static_cast<std::size_t>(b);
            x[at] = {src[static_cast<std::size_t>(re)],
                     real ? Quad(0) : src[static_cast<std::size_t>(im)]};
            if (!real) x[n - at] = {x[at].re, -x[at].im};
        }
        const std::vector<Bin> y = transform(x, sign);
        for (std::size_t j = 0; j < n; ++j) dst[j] = y[j].re;
        return dst;
    }
    for (std::size_t j = 0; j < n; ++j) x[j] = {src[j], 0};
    const std::vector<Bin> y = transform(x, sign);
    if (k.info->transform == Transform::Hartley) {
        for (std::size_t j = 0; j < n; ++j) dst[j] = y[j].re - y[j].im;
        return dst;
    }
    for (int b = 0; b <= k.length / 2; ++b) {
        const auto [re, im] = place(k.info->dst, k.length, b);
        const bool real = b == 0 || 2 * b == k.length;
        dst[static_cast<std::size_t>(re)] = y[static_cast<std::size_t>(b)].re;
        if (im >= 0)
            dst[static_cast<std::size_t>(im)] = real ? Quad(0) : y[static_cast<std::size_t>(b)].im;
    }
    return dst;
}

}  // namespace orvgen::test
