// SPDX-License-Identifier: MIT
// Comparison of a kernel with what it should give, bit for bit: on many inputs, in all rounding
// modes.
#pragma once

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <limits>

#include "dct4/plan.h"

namespace orvgen::test::dct4 {

constexpr int roundingModes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

// Any NaN equals any NaN; everything else bit for bit.
inline bool sameValue(Real a, Real b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return bitsOf(a) == bitsOf(b);
}

inline void expectSame(const std::vector<Real>& found, const std::vector<Real>& expected,
                       const std::string& what) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_TRUE(sameValue(found[i], expected[i]))
            << what << " at " << i << ": " << found[i] << " instead of " << expected[i];
    }
}

// Random numbers, wide ones, small ones, then zeros of both signs, denormals, infinities and NaN
// among random ones.
inline std::vector<std::vector<Real>> inputs(std::int64_t size) {
    std::vector<std::vector<Real>> all;
    all.push_back(randomVector(size, 11));
    for (const double scale : {0x1p100, 0x1p-120, familyBits == 32 ? 0x1p-145 : 0x1p-1070}) {
        all.push_back(randomVector(size, 12));
        for (Real& value : all.back())
            value = static_cast<Real>(static_cast<double>(value) * scale);
    }
    using Limits = std::numeric_limits<Real>;
    const std::vector<std::vector<Real>> specials = {
        {Real{0}, -Real{0}},
        {Real{0}, -Real{0}, Real{1}, Limits::denorm_min(), -Limits::min()},
        {Limits::infinity(), Real{1}, Real{2}, Real{3}, -Real{4}, Real{5}, Real{7}, Real{9}},
        {Limits::max(), -Limits::max(), Real{1}, Real{0}},
        {Limits::quiet_NaN(), Real{1}, Real{2}, -Limits::infinity(), Real{3}}};
    for (const std::vector<Real>& special : specials) {
        std::vector<Real> x = randomVector(size, 13);
        for (std::size_t i = 0; i < x.size(); ++i) {
            if (special.size() == 2 || i % 3 == 0) x[i] = special[(i / 3 + i) % special.size()];
        }
        all.push_back(x);
    }
    return all;
}

// In every rounding mode, on every input: the kernel's destination against the expectation.
template <class Found, class Expected>
void compare(std::int64_t size, const std::string& what, const Found& found,
             const Expected& expected) {
    for (const std::vector<Real>& x : inputs(size)) {
        for (const int mode : roundingModes) {
            std::fesetround(mode);
            const std::vector<Real> a = found(x);
            const std::vector<Real> b = expected(x);
            std::fesetround(FE_TONEAREST);
            expectSame(a, b, what);
        }
    }
}

// A vector whose data lie `offset` elements behind a 16-byte boundary.
class Offset {
  public:
    Offset(const std::vector<Real>& values, std::size_t offset)
        : memory(values.size() + 16), count(values.size()) {
        const auto address = reinterpret_cast<std::uintptr_t>(memory.data());
        start = (16 - address % 16) % 16 / sizeof(Real) + offset;
        std::copy(values.begin(), values.end(), data());
    }
    Real* data() { return memory.data() + start; }
    std::vector<Real> take() { return {data(), data() + count}; }

  private:
    std::vector<Real> memory;
    std::size_t start, count;
};

constexpr Real pattern = static_cast<Real>(-77);

}  // namespace orvgen::test::dct4
