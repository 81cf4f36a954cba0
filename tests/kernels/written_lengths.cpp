// SPDX-License-Identifier: MIT
// Lengths 24, 45, 48 and 56 of the real, the Hartley and the binary64 complex families, one for
// each kind of join, computed a second time from their formulas: the kernels give the same bits in
// all rounding modes, a NaN being as good as any other.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>

#include "kernel_list.h"
#include "support/flow_runs.h"
#include "support/inputs.h"
#include "support/written_real.h"

namespace orvgen::test {
namespace {

using namespace written;

const Joins forwardJoins = {{8, twiddled(4, 2)},  {9, twiddled(3, 3)},
                            {16, twiddled(4, 4)}, {24, coprime(3, 8)},
                            {45, coprime(5, 9)},  {48, renumbered(coprime(16, 3))},
                            {56, coprime(7, 8)}};
const Joins inverseJoins = {{8, twiddled(4, 2)}, {9, twiddled(3, 3)}, {16, twiddled(8, 2)},
                            {24, coprime(8, 3)}, {45, coprime(5, 9)}, {48, coprime(16, 3)},
                            {56, coprime(8, 7)}};
// Of the complex rows in an inverse: 16 as complex transforms, 8 as two real ones.
const Joins rowJoins = {{16, twiddled(2, 8)}};
const Joins rowParts = {{8, twiddled(2, 4)}};
const Joins none;

template <class T>
struct Scale {
    T value;

    // Expressions are rounded behind the scale in the forward transforms, before it in the others;
    // a minus that is left is taken from zero.
    T insideExpression(const Value<T>& v) const {
        if (!v.open) {
            const T product = value * static_cast<T>(v.magnitude);
            return v.minus ? T(0) - product : product;
        }
        const double product = static_cast<double>(value) * v.magnitude;
        return static_cast<T>(v.minus ? 0.0 - product : product);
    }
    T behind(const Value<T>& v) const { return value * narrow(v).sample(); }
};

template <class T>
Values<T> valuesOf(const std::vector<T>& x) {
    Values<T> values;
    for (const T v : x) values.emplace_back(v);
    return values;
}

enum class Layout { Ccs, Pack, Perm };

// R0 I0 R1 I1 .. to the layout and back.
template <class T>
std::vector<T> packed(Layout layout, int n, std::vector<T> parts) {
    parts[1] = 0;
    if (n % 2 == 0) parts.back() = 0;
    if (layout == Layout::Ccs) return parts;
    const T last = parts[static_cast<std::size_t>(n % 2 == 0 ? n : 0)];
    if (n % 2 == 0) parts.resize(static_cast<std::size_t>(n));
    parts.erase(parts.begin() + 1);
    if (n % 2 == 0) parts.insert(layout == Layout::Pack ? parts.end() : parts.begin() + 1, last);
    return parts;
}
template <class T>
std::vector<T> unpacked(Layout layout, int n, std::vector<T> x) {
    if (layout == Layout::Ccs) return x;
    if (n % 2 == 0) {
        const auto place = layout == Layout::Pack ? x.end() - 1 : x.begin() + 1;
        const T last = *place;
        x.erase(place);
        x.insert(x.end(), {last, T(0)});
    }
    x.insert(x.begin() + 1, T(0));
    return x;
}

template <class T>
std::vector<T> realForward(Layout layout, int n, const std::vector<T>& x, Scale<T> scale) {
    const Transforms<T> transforms(forwardJoins, none, none);
    std::vector<T> parts;
    for (const RealBin<T>& bin : transforms.real(n, 1, valuesOf(x))) {
        parts.push_back(scale.insideExpression(bin.re));
        parts.push_back(scale.insideExpression(bin.im));
    }
    return packed(layout, n, parts);
}

template <class T>
std::vector<T> realInverse(int n, const Spectrum<T>& z, Scale<T> scale) {
    const Transforms<T> transforms(rowParts, inverseJoins, rowJoins);
    std::vector<T> y;
    for (const Value<T>& v : transforms.inverse(n, 1, z)) y.push_back(scale.behind(v));
    return y;
}

template <class T>
std::vector<T> fromHalfSpectrum(Layout layout, int n, const std::vector<T>& x, Scale<T> scale) {
    const Values<T> parts = valuesOf(unpacked(layout, n, x));
    Spectrum<T> z = {{parts[0]}};
    for (std::size_t k = 1; 2 * k < x.size() && 2 * k < static_cast<std::size_t>(n); ++k)
        z.push_back({twice(parts[2 * k]), twice(parts[2 * k + 1])});
    if (n % 2 == 0) z.push_back({parts[static_cast<std::size_t>(n)]});
    return realInverse(n, z, scale);
}

// 24 by the forward transform; the others by the inverse one of sums and differences.
template <class T>
std::vector<T> hartley(int n, const std::vector<T>& x, Scale<T> scale) {
    const Values<T> v = valuesOf(x);
    const auto count = static_cast<std::size_t>(n);
    if (n != 24) {
        Spectrum<T> z = {{v[0]}};
        for (std::size_t k = 1; 2 * k < count; ++k)
            z.push_back({v[k] + v[count - k], v[count - k] - v[k]});
        if (n % 2 == 0) z.push_back({v[count / 2]});
        return realInverse(n, z, scale);
    }
    const Spectrum<T> X = Transforms<T>(forwardJoins, none, none).real(n, 1, v);
    std::vector<T> y(count);
    for (std::size_t k = 0; k < X.size(); ++k) {
        if (k == 0 || 2 * k == count) {
            y[k] = scale.behind(X[k].re);
            continue;
        }
        y[k] = scale.behind(narrow(X[k].re) - narrow(X[k].im));
        y[count - k] = scale.behind(narrow(X[k].re) + narrow(X[k].im));
    }
    return y;
}

// The real transforms of both parts at once, X = A + i B.
std::vector<double> complexDouble(Direction direction, int n, const std::vector<double>& x,
                                  Scale<double> scale) {
    Values<double> re, im;
    for (std::size_t i = 0; i < x.size(); i += 2) {
        re.emplace_back(x[i]);
        im.emplace_back(x[i + 1]);
    }
    const Transforms<double> transforms(forwardJoins, none, none,
                                        direction == Direction::Inverse
                                            ? DirectSums::UpwardsMinusFirst
                                            : DirectSums::UpwardsPlusFirst);
    const Spectrum<double> A = transforms.real(n, 1, re), B = transforms.real(n, 1, im);
    std::vector<double> y(x.size());
    const auto put = [&](std::size_t k, const Value<double>& r, const Value<double>& i) {
        const std::size_t bin = direction == Direction::Inverse && k > 0 ? re.size() - k : k;
        y[2 * bin] = scale.behind(r);
        y[2 * bin + 1] = scale.behind(i);
    };
    for (std::size_t k = 0; k < A.size(); ++k) {
        if (k == 0 || 2 * k == re.size()) {
            put(k, A[k].re, B[k].re);
            continue;
        }
        put(k, A[k].re - B[k].im, B[k].re + A[k].im);
        put(re.size() - k, A[k].re + B[k].im, B[k].re - A[k].im);
    }
    return y;
}

template <class T>
using Written = std::function<std::vector<T>(int n, const std::vector<T>& x, Scale<T> scale)>;

template <class T>
void compare(const std::string& family, const Written<T>& transformed) {
    for (const ListedKernel& k : listedKernels()) {
        if (k.family != family) continue;
        if (k.length != 24 && k.length != 45 && k.length != 48 && k.length != 56) continue;
        for (const std::int32_t flag : {8, 4}) {
            const Scale<T> scale{flag == 8 ? T(1) : static_cast<T>(1 / std::sqrt(k.length))};
            for (const Input<T>& input : makeInputs<T>(k.srcCount, 4)) {
                for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
                    std::vector<T> y(k.dstCount);
                    std::fesetround(mode);
                    k.call(input.values.data(), y.data(), flag);
                    const std::vector<T> expected = transformed(k.length, input.values, scale);
                    std::fesetround(FE_TONEAREST);
                    ASSERT_TRUE(sameBits(y, expected))
                        << k.name << ", " << input.name << ", mode " << mode << ", flag " << flag;
                }
            }
        }
    }
}

template <class T>
class WrittenLengths : public testing::Test {
  protected:
    static void family(const std::string& name, const Written<T>& transformed) {
        compare<T>(name + (isSingle<T> ? "_32f" : "_64f"), transformed);
    }
};
TYPED_TEST_SUITE(WrittenLengths, Elements);

TYPED_TEST(WrittenLengths, OfRealDataHaveTheBitsOfTheKernels) {
    using T = TypeParam;
    for (const auto& [layout, name] :
         {std::pair{Layout::Ccs, "CCS"}, {Layout::Pack, "Pack"}, {Layout::Perm, "Perm"}})
        TestFixture::family(std::string("orvgDFTFwd_RTo") + name,
                            [layout = layout](int n, const std::vector<T>& x, Scale<T> scale) {
                                return realForward(layout, n, x, scale);
                            });
}

TYPED_TEST(WrittenLengths, OfHalfSpectraHaveTheBitsOfTheKernels) {
    using T = TypeParam;
    for (const auto& [layout, name] :
         {std::pair{Layout::Ccs, "CCS"}, {Layout::Pack, "Pack"}, {Layout::Perm, "Perm"}})
        TestFixture::family(std::string("orvgDFTInv_") + name + "ToR",
                            [layout = layout](int n, const std::vector<T>& x, Scale<T> scale) {
                                return fromHalfSpectrum(layout, n, x, scale);
                            });
}

TYPED_TEST(WrittenLengths, OfHartleyHaveTheBitsOfTheKernels) {
    TestFixture::family("orvgHartley", hartley<TypeParam>);
}

TEST(WrittenComplex, OfBinary64HasTheBitsOfTheKernels) {
    for (const auto& [direction, name] : {std::pair{Direction::Forward, "orvgDFTFwd_CToC_64fc"},
                                          {Direction::Inverse, "orvgDFTInv_CToC_64fc"}})
        compare<double>(name, [direction = direction](int n, const std::vector<double>& x,
                                                      Scale<double> scale) {
            return complexDouble(direction, n, x, scale);
        });
}

}  // namespace
}  // namespace orvgen::test
