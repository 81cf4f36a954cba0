// SPDX-License-Identifier: MIT
// Lengths 2 to 5 in binary32, computed a second time as their formulas say it: sums and differences
// of inputs in binary32, at 3 and 5 the sums of products in binary64 and each rounded once, the
// last sums and the scale in binary32. The kernels give the same bits. (The vector form of length 5
// adds its first output up in another order.)
#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "complex/complex_calls.h"
#include "support/data_table.h"
#include "support/inputs.h"

namespace orvgen::test {
namespace {

template <class Real>
struct Complex {
    Real re, im;
    friend Complex operator+(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }
    friend Complex operator-(Complex a, Complex b) { return {a.re - b.re, a.im - b.im}; }
    friend Complex operator*(Real c, Complex a) { return {c * a.re, c * a.im}; }
};
using Single = Complex<float>;
using Double = Complex<double>;
using Elements = std::vector<Single>;

Double wide(Single a) { return {static_cast<double>(a.re), static_cast<double>(a.im)}; }
Single rounded(Double a) { return {static_cast<float>(a.re), static_cast<float>(a.im)}; }

// m - i p and m + i p
Single minusTurned(Single m, Single p) { return {m.re + p.im, m.im - p.re}; }
Single plusTurned(Single m, Single p) { return {m.re - p.im, m.im + p.re}; }

constexpr double sine60 = 0.8660254037844386;
constexpr double c1 = 0.30901699437494745, c2 = 0.8090169943749475;
constexpr double s1 = 0.9510565162951535, s2 = 0.5877852522924731;

Elements forward(const Elements& z) {
    switch (z.size()) {
        case 2:
            return {z[0] + z[1], z[0] - z[1]};
        case 3: {
            const Single t = z[1] + z[2], d = z[1] - z[2];
            const Single m = rounded(wide(z[0]) - 0.5 * wide(t));
            const Single p = rounded(sine60 * wide(d));
            return {z[0] + t, minusTurned(m, p), plusTurned(m, p)};
        }
        case 4: {
            const Single a = z[0] + z[2], b = z[1] + z[3], c = z[0] - z[2], d = z[1] - z[3];
            return {a + b, minusTurned(c, d), a - b, plusTurned(c, d)};
        }
        default: {
            const Single a = z[1] + z[4], d = z[1] - z[4], b = z[3] + z[2], e = z[3] - z[2];
            const Single A1 = rounded((c1 * wide(a) + wide(z[0])) - c2 * wide(b));
            const Single A2 = rounded((wide(z[0]) - c2 * wide(a)) + c1 * wide(b));
            const Single P1 = rounded(s1 * wide(d) - s2 * wide(e));
            const Single P2 = rounded(s2 * wide(d) + s1 * wide(e));
            return {(z[0] + a) + b, minusTurned(A1, P1), minusTurned(A2, P2), plusTurned(A2, P2),
                    plusTurned(A1, P1)};
        }
    }
}

// The directions differ in the sign of the last step, so that outputs k and N - k trade places.
Elements transformed(const Elements& z, Direction direction) {
    const Elements y = forward(z);
    Elements result;
    for (std::size_t k = 0; k < y.size(); ++k)
        result.push_back(y[direction == Direction::Inverse ? (y.size() - k) % y.size() : k]);
    return result;
}

bool same(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

TEST(ScalarFormulas, GiveTheBitsOfTheKernels) {
    int kernels = 0;
    for (const DataRow& row : dataTable("complex_f32_base").rows()) {
        const int n = static_cast<int>(row.integer("length"));
        if (row.text("form") != "butterfly") continue;
        for (const Direction direction : kBothDirections) {
            const ListedKernel* k = complexKernel(direction, n, Precision::Single);
            ASSERT_NE(k, nullptr);
            ++kernels;
            for (const auto& input : makeInputs<float>(k->srcCount, k->srcCount)) {
                const std::vector<float>& x = input.values;
                Elements z;
                for (std::size_t i = 0; i < x.size(); i += 2) z.push_back({x[i], x[i + 1]});
                const Elements expected = transformed(z, direction);
                for (const std::int32_t flag : {1, 2, 4, 8}) {
                    std::vector<float> y(x.size());
                    ASSERT_EQ(k->call(x.data(), y.data(), flag), orvOk);
                    const auto scale = static_cast<float>(k->scale(flag));
                    for (std::size_t i = 0; i < z.size(); ++i) {
                        const Single e = scale * expected[i];
                        EXPECT_TRUE(same(y[2 * i], e.re) && same(y[2 * i + 1], e.im))
                            << k->name << ", " << input.name << ", flag " << flag << ", element "
                            << i;
                    }
                }
            }
        }
    }
    EXPECT_EQ(kernels, 8);
}

}  // namespace
}  // namespace orvgen::test
