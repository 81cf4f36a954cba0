// SPDX-License-Identifier: MIT
// The inverse kernels against the forward ones, bit for bit, where the table says so, and not where
// it says that a relation does not hold.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <type_traits>

#include "complex/complex_calls.h"
#include "support/count_check.h"
#include "support/data_table.h"
#include "support/inputs.h"

namespace orvgen::test {
namespace {

template <class Real>
using Vector = std::vector<Real>;

template <class Real>
Vector<Real> swapped(const Vector<Real>& x) {
    Vector<Real> y(x.size());
    for (std::size_t i = 0; i < x.size(); i += 2) {
        y[i] = x[i + 1];
        y[i + 1] = x[i];
    }
    return y;
}

// Element (N - k) mod N at k.
template <class Real>
Vector<Real> reversed(const Vector<Real>& x) {
    const std::size_t n = x.size() / 2;
    Vector<Real> y(x.size());
    for (std::size_t k = 0; k < n; ++k) {
        const std::size_t from = (n - k) % n;
        y[2 * k] = x[2 * from];
        y[2 * k + 1] = x[2 * from + 1];
    }
    return y;
}

template <class Real>
bool sameBits(const Vector<Real>& a, const Vector<Real>& b) {
    using Bits = std::conditional_t<sizeof(Real) == 4, std::uint32_t, std::uint64_t>;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::bit_cast<Bits>(a[i]) != std::bit_cast<Bits>(b[i])) return false;
    }
    return a.size() == b.size();
}

template <class Real>
void check() {
    constexpr Precision precision = sizeof(Real) == 4 ? Precision::Single : Precision::Double;
    constexpr bool isSingle = precision == Precision::Single;
    const std::string prefix = isSingle ? "f32_" : "f64_";
    CountCheck found(isSingle ? "inverse_relations_f32" : "inverse_relations_f64");
    for (const DataRow& row : dataTable("inverse_relations").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        const ListedKernel* forward = complexKernel(Direction::Forward, n, precision);
        const ListedKernel* inverse = complexKernel(Direction::Inverse, n, precision);
        ASSERT_TRUE(forward && inverse) << n;
        std::mt19937 engine(static_cast<unsigned>(n));
        std::uniform_real_distribution<Real> value(-1, 1);
        std::normal_distribution<double> exponent(0, 6);
        bool swap = true, reverse = true;
        for (int i = 0; i < 400; ++i) {
            // Numbers of one size, then of several.
            Vector<Real> x(static_cast<std::size_t>(2 * n));
            for (Real& v : x)
                v = std::ldexp(value(engine), i % 2 == 0 ? 0 : static_cast<int>(exponent(engine)));
            const Vector<Real> y = transform(*inverse, x);
            swap = swap && sameBits(y, swapped(transform(*forward, swapped(x))));
            reverse = reverse && sameBits(y, reversed(transform(*forward, x)));
        }
        found.compare(n, prefix + "swap", row.integer(prefix + "swap"), swap);
        found.compare(n, prefix + "reverse", row.integer(prefix + "reverse"), reverse);
    }
    EXPECT_EQ(found.report(), "");
}

// On inputs that hold zeros of both signs, infinities, NaN, denormals and numbers of any size, the
// relations that are listed hold as well, but for the sign of a zero: a product by the stored zero
// of a twiddle, and a sum of zeros, need not give the zero of the mirrored computation. It shows in
// inputs of nothing but zeros (and of zeros and ones).
TEST(InverseRelations, HoldForSpecialInputsUpToTheSignOfZero) {
    const auto equal = [](const Vector<float>& a, const Vector<float>& b) {
        for (std::size_t i = 0; i < a.size(); ++i)
            if (a[i] != b[i] && !(std::isnan(a[i]) && std::isnan(b[i]))) return false;
        return a.size() == b.size();
    };
    for (const DataRow& row : dataTable("inverse_relations").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        const ListedKernel* forward = complexKernel(Direction::Forward, n, Precision::Single);
        const ListedKernel* inverse = complexKernel(Direction::Inverse, n, Precision::Single);
        ASSERT_TRUE(forward && inverse) << n;
        for (const auto& input : makeInputs<float>(forward->srcCount, 8)) {
            const Vector<float>& x = input.values;
            const Vector<float> y = transform(*inverse, x);
            EXPECT_TRUE(!row.flag("f32_swap") || equal(y, swapped(transform(*forward, swapped(x)))))
                << n << ", " << input.name;
            EXPECT_TRUE(!row.flag("f32_reverse") || equal(y, reversed(transform(*forward, x))))
                << n << ", " << input.name;
        }
    }
}

TEST(InverseRelations, HoldExactlyWhereListedInBinary32) { check<float>(); }
TEST(InverseRelations, HoldExactlyWhereListedInBinary64) { check<double>(); }

}  // namespace
}  // namespace orvgen::test
