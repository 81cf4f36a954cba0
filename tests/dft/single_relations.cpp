// The inverse flows against the forward ones, bit for bit: where a relation is listed it holds on
// all inputs tried, and where it is not, an input shows that it does not hold.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "dft/families.h"
#include "kernelgen/evaluate.h"
#include "support/data_table.h"

namespace orvgen {
namespace {

using Signal = std::vector<float>;  // re, im, re, im ..

// Bluestein's flows read one element more; it is zero.
Signal run(const kernelgen::Graph& flow, Signal x) {
    Signal y(x.size());
    x.resize(x.size() + 2);
    kernelgen::evaluate(flow, x.data(), y.data(), 1.0);
    return y;
}

Signal exchanged(Signal x) {
    for (std::size_t i = 0; i < x.size(); i += 2) std::swap(x[i], x[i + 1]);
    return x;
}

Signal reversed(const Signal& x) {
    const std::size_t n = x.size() / 2;
    Signal y(x.size());
    for (std::size_t k = 0; k < n; ++k) {
        y[2 * k] = x[2 * ((n - k) % n)];
        y[2 * k + 1] = x[2 * ((n - k) % n) + 1];
    }
    return y;
}

bool equalBits(const Signal& a, const Signal& b) {
    return std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

class SingleRelations : public testing::TestWithParam<int> {};

TEST_P(SingleRelations, HoldExactlyWhereListed) {
    const int n = GetParam();
    const auto& row = test::dataTable("inverse_relations").row("length", n);
    const auto families = dft::complexSingleFamilies();
    const auto forward = families[0].kernel(n).flow, inverse = families[1].kernel(n).flow;
    std::mt19937 random(static_cast<unsigned>(n));
    std::uniform_real_distribution<float> uniform(-1, 1);
    std::normal_distribution<float> exponent(0, 6);
    const int inputs = n == 47 || n == 59 ? 40 : 200;
    bool swap = true, reverse = true;
    for (int i = 0; i < inputs; ++i) {
        Signal x;
        for (int j = 0; j < 2 * n; ++j)
            x.push_back(i % 2 == 0
                            ? uniform(random)
                            : std::ldexp(uniform(random), static_cast<int>(exponent(random))));
        const Signal y = run(inverse, x);
        swap = swap && equalBits(y, exchanged(run(forward, exchanged(x))));
        reverse = reverse && equalBits(y, reversed(run(forward, x)));
    }
    EXPECT_EQ(swap, row.flag("f32_swap"));
    EXPECT_EQ(reverse, row.flag("f32_reverse"));
}

INSTANTIATE_TEST_SUITE_P(Lengths, SingleRelations,
                         testing::ValuesIn(dft::complexSingleFamilies()[0].lengths),
                         [](const auto& length) { return std::to_string(length.param); });

}  // namespace
}  // namespace orvgen
