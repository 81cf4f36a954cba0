// SPDX-License-Identifier: MIT
// The errors of every kernel on random inputs: as an FFT is expected to be, below what the a-priori
// bound allows, and as published.
#include "accuracy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "accuracy_page.h"
#include "generator/operations.h"
#include "generator/registry.h"
#include "kernelgen/error_bound.h"
#include "support/text_file.h"

namespace {

using namespace orvgen::test;

const char* const kAgain = "write the page again: ./dev accuracy";

const AccuracyCells& published() {
    static const AccuracyCells cells = readAccuracyPage(textOf(ORVGEN_ACCURACY_PAGE));
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
    EXPECT_LE(a.relativeL2, accuracyLimit(k.length)) << "sqrt(log2 N)";
    const orvgen::kernelgen::ErrorBound bound = orvgen::kernelgen::errorBound(k.kernel().flow);
    EXPECT_LE(a.absolute, bound.absolute) << "a-priori bound";
    EXPECT_NEAR(bound.magnitude, largestResult(k), 1e-6 * bound.magnitude) << "sum of |weights|";
    EXPECT_EQ(accuracyCell(a), published().at({k.family, k.length})) << kAgain;
}

INSTANTIATE_TEST_SUITE_P(Kernels, AccuracyTest,
                         testing::Range(std::size_t{0}, listedKernels().size()),
                         [](const auto& p) { return listedKernels()[p.param].name; });

template <class T>
void checkOrders(const orvgen::FamilyInfo& family) {
    for (const orvgen::KernelFamily& rows : orvgen::generator::allFamilies()) {
        if (rows.info != &family) continue;
        for (const OrderFunctions<T>& f : orderFunctions<T>()) {
            SCOPED_TRACE(f.name);
            const Accuracy a = measureAccuracy(f);
            EXPECT_LE(a.relativeL2, accuracyLimit(1 << f.order)) << "sqrt(log2 N)";
            EXPECT_LE(a.absolute, orvgen::generator::errorBoundOf(rows.kernel(f.order)).absolute);
            EXPECT_EQ(accuracyCell(a), published().at({nameOf(family), f.order})) << kAgain;
        }
        return;
    }
    FAIL() << "no such family";
}

TEST(AccuracyOfWalshHadamard, IsWithinItsBoundsAndAsPublished) {
    checkOrders<Orv32f>(orvgen::familyOf("WHT", "32f"));
    checkOrders<Orv64f>(orvgen::familyOf("WHT", "64f"));
}

TEST(AccuracyPage, IsTheTableWithItsText) {
    ASSERT_EQ(published().size(), orvgen::allKernels().size());
    EXPECT_EQ(textOf(ORVGEN_ACCURACY_PAGE), accuracyPage(published())) << kAgain;
}

}  // namespace
