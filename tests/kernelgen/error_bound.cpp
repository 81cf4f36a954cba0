// SPDX-License-Identifier: MIT
// The bounds of errors at small lengths, derived by hand.
#include "kernelgen/error_bound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "generator/registry.h"

namespace orvgen::test {
namespace {

using namespace orvgen::kernelgen;

Graph flow(const std::string& kernel) {
    for (const KernelFamily& family : generator::allFamilies())
        for (const int n : family.info->numbers)
            if (memberName(*family.info, n) == kernel) return family.kernel(n).flow;
    throw std::invalid_argument("no kernel " + kernel);
}

// The bound by hand. Each rounding adds u times the largest value that is rounded, a stored
// constant that is not exact as much again; sums and products hand errors on. s = sin 60, r = cos
// 45 degrees.
TEST(ErrorBounds, AreThoseOfTheFormulas) {
    const double s = std::sqrt(3) / 2, r = std::sqrt(0.5);
    const struct {
        std::string kernel;
        double bound;
    } rows[] = {
        // One sum of two: 2.
        {"orvgDFTFwd_CToC_2_32fc", 2},
        {"orvgDFTFwd_RToPack_2_64f", 2},
        {"orvgHartley_2_32f", 2},
        // Sums of two of two: 2 + 2 + 4.
        {"orvgDFTFwd_CToC_4_32fc", 8},
        {"orvgDFTInv_CToC_4_64fc", 8},
        {"orvgDFTFwd_RToPerm_4_64f", 8},
        // y0 = x0 + a, a = x1 + x2: 2 + 3. I1 = s (x2 - x1): 2 s from the difference, 2 s each from
        // constant and product.
        {"orvgDFTFwd_RToPack_3_64f", 6 * s},
        // In binary32 with the product in binary64: 2 s from the difference, 2 s from the
        // narrowing;
        // y0 has more.
        {"orvgDFTFwd_RToPack_3_32f", 5},
        // b = x0 - a/2: 1 + 2; p = s (x1 - x2): 6 s; b + i p: 2 + 2 s more.
        {"orvgDFTFwd_CToC_3_64fc", 5 + 8 * s},
        // The same, but that b and p have samples in common: the result is at most 1 + 2 s.
        {"orvgHartley_3_64f", 3 + 6 * s + 1 + 2 * s},
        // R0 - R1: 2; 2 s I1: 4 s; their sum: 2 + 2 s.
        {"orvgDFTInv_PackToR_3_64f", 4 + 6 * s},
        // Three layers of sums: 2; 2 + 2 + 4; 8 + 8 + 8. (R1: 4 + 20 r.)
        {"orvgDFTFwd_RToCCS_8_64f", std::max(24.0, 4 + 20 * r)},
    };
    for (const auto& row : rows) {
        const double bound = errorBound(flow(row.kernel)).absolute;
        EXPECT_NEAR(bound, row.bound, 1e-6 * row.bound) << row.kernel;
    }
}

}  // namespace
}  // namespace orvgen::test
