// Every kernel is as exact as an FFT can be expected to be, on random inputs.
#include "accuracy.h"

#include <gtest/gtest.h>

namespace {

using namespace orvgen::test;

class AccuracyTest : public testing::TestWithParam<std::size_t> {};

TEST_P(AccuracyTest, GrowsWithTheRootOfTheLogarithm) {
    const ListedKernel& k = listedKernels()[GetParam()];
    const Accuracy a = measureAccuracy(k);
    EXPECT_LE(a.relativeL2, accuracyLimit(k)) << k.name;
    RecordProperty("relativeL2", std::to_string(a.relativeL2));
}

INSTANTIATE_TEST_SUITE_P(Kernels, AccuracyTest,
                         testing::Range(std::size_t{0}, listedKernels().size()),
                         [](const auto& p) { return listedKernels()[p.param].name; });

}  // namespace
