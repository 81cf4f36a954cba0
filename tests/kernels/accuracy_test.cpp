// SPDX-License-Identifier: MIT
// The errors of every kernel on random inputs: as an FFT is expected to be, below what the a-priori
// bound allows, and as published.
#include "accuracy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

#include "accuracy_page.h"
#include "kernelgen/error_bound.h"

namespace {

using namespace orvgen::test;

std::string publishedPage() {
    std::ifstream file(ORVGEN_ACCURACY_PAGE);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

const AccuracyCells& published() {
    static const AccuracyCells cells = readAccuracyPage(publishedPage());
    return cells;
}

// The largest |y[i]| over inputs of at most 1, by the definition: what the results are for each
// single input of 1.
double largestResult(const ListedKernel& k) {
    std::vector<Quad> sums(k.dstCount, 0);
    for (std::size_t j = 0; j < k.srcCount; ++j) {
        std::vector<Quad> unit(k.srcCount, 0);
        unit[j] = 1;
        const std::vector<Quad> y = directTransform(k, unit);
        for (std::size_t i = 0; i < y.size(); ++i) sums[i] += y[i] < 0 ? -y[i] : y[i];
    }
    return static_cast<double>(*std::max_element(sums.begin(), sums.end()));
}

class AccuracyTest : public testing::TestWithParam<std::size_t> {};

TEST_P(AccuracyTest, IsWithinItsBoundsAndAsPublished) {
    const ListedKernel& k = listedKernels()[GetParam()];
    const Accuracy a = measureAccuracy(k);
    EXPECT_LE(a.relativeL2, accuracyLimit(k)) << "sqrt(log2 N)";
    const orvgen::kernelgen::ErrorBound bound = orvgen::kernelgen::errorBound(k.kernel().flow);
    EXPECT_LE(a.absolute, bound.absolute) << "a-priori bound";
    EXPECT_NEAR(bound.magnitude, largestResult(k), 1e-6 * bound.magnitude) << "sum of |weights|";
    const auto cell = published().find({k.family, k.length});
    if (cell != published().end()) {
        EXPECT_EQ(accuracyCell(a), cell->second) << "write the page again: ./dev accuracy";
    }
}

INSTANTIATE_TEST_SUITE_P(Kernels, AccuracyTest,
                         testing::Range(std::size_t{0}, listedKernels().size()),
                         [](const auto& p) { return listedKernels()[p.param].name; });

// The bound by hand. Each rounding adds u times the largest value that is rounded, a stored
// constant that is not exact as much again; sums and products hand errors on. s = sin 60, r = cos
// 45 degrees.
TEST(ErrorBound, IsThatOfTheFormulas) {
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
        const auto k = std::find_if(listedKernels().begin(), listedKernels().end(),
                                    [&](const ListedKernel& l) { return l.name == row.kernel; });
        ASSERT_NE(k, listedKernels().end()) << row.kernel;
        const double bound = orvgen::kernelgen::errorBound(k->kernel().flow).absolute;
        EXPECT_NEAR(bound, row.bound, 1e-6 * row.bound) << row.kernel;
    }
}

TEST(AccuracyPage, IsTheTableWithItsText) {
    ASSERT_EQ(published().size(), 63 * accuracyColumns().size());
    EXPECT_EQ(publishedPage(), accuracyPage(published())) << "write it again: ./dev accuracy";
}

}  // namespace
