// SPDX-License-Identifier: MIT
// The counts of the literature, against figures that were published, and against our kernels: none
// may do what is proved impossible.
#include "known_counts.h"

#include <gtest/gtest.h>

#include "flow_data.h"
#include "generator/operations.h"
#include "generator/registry.h"
#include "kernel_data.h"

namespace orvgen::test {
namespace {

using namespace orvgen::site;

double count(Kind kind, int N, Claim claim, Counted counted) {
    for (const KnownCount& known : knownCounts(kind, N))
        if (known.claim == claim && known.counted == counted) return known.count;
    ADD_FAILURE() << "nothing known of " << N;
    return -1;
}

TEST(KnownCounts, FewestKnownAreThoseOfTheTableOfJohnsonAndFrigo) {
    struct Row {
        int N, splitRadix, fewest;
    };
    for (const Row& row :
         {Row{16, 168, 168}, Row{32, 456, 456}, Row{64, 1160, 1152}, Row{128, 2824, 2792},
          Row{256, 6664, 6552}, Row{512, 15368, 15048}, Row{1024, 34824, 33968}}) {
        EXPECT_EQ(count(Kind::Complex, row.N, Claim::KnownMethod, Counted::Both), row.splitRadix);
        EXPECT_EQ(count(Kind::Complex, row.N, Claim::FewestKnown, Counted::Both), row.fewest);
    }
}

// Split radix of real samples: 2 N log2 N - 4 N + 6 (Sorensen, Jones, Heideman and Burrus 1987).
TEST(KnownCounts, RealSplitRadixIsThatOfItsPaper) {
    for (int N = 4, m = 2; N <= 64; N *= 2, ++m)
        EXPECT_EQ(count(Kind::Real, N, Claim::KnownMethod, Counted::Both), 2 * N * m - 4 * N + 6);
}

TEST(KnownCounts, MultiplicationsAreThoseOfWinogradsShortTransforms) {
    const auto least = [](Kind kind, int N) {
        return count(kind, N, Claim::LowerBound, Counted::Multiplications);
    };
    // Those of his algorithms, less one rational product at each prime.
    EXPECT_EQ(least(Kind::Real, 3), 1);
    EXPECT_EQ(least(Kind::Real, 5), 4);
    EXPECT_EQ(least(Kind::Real, 7), 7);
    EXPECT_EQ(least(Kind::Real, 2), 0);
    EXPECT_EQ(least(Kind::Real, 4), 0);
    EXPECT_EQ(least(Kind::Real, 8), 2);
    EXPECT_EQ(least(Kind::Real, 16), 10);
    EXPECT_EQ(least(Kind::Complex, 16), 20);
    EXPECT_EQ(least(Kind::Complex, 64), 168);
}

TEST(KnownCounts, AdditionsAreHalfNLog2NOfComplexOnes) {
    // A complex addition is two real ones.
    EXPECT_EQ(count(Kind::Complex, 64, Claim::LowerBound, Counted::Additions), 64 * 6);
    EXPECT_EQ(count(Kind::WalshHadamard, 64, Claim::LowerBound, Counted::Additions), 32 * 6);
    // (x0 + x1, x0 - x1) has the determinant -2.
    EXPECT_EQ(count(Kind::Real, 2, Claim::LowerBound, Counted::Additions), 1);
}

TEST(KnownCounts, NoKernelTakesLessThanItsBounds) {
    int compared = 0;
    for (const KernelFamily& family : generator::allFamilies()) {
        for (const int length : family.info->numbers) {
            const kernelgen::Kernel kernel = family.kernel(length);
            const generator::Operations operations = generator::operationsOf(kernel);
            for (const KnownCount& known : knownCounts(kindOf(*family.info), kernel.length)) {
                if (known.claim == Claim::KnownMethod || !conditionHolds(known, kernel)) continue;
                EXPECT_GE(comparable(operations, known.counted), known.count)
                    << kernel.name.exported() << ": " << known.source;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 1160);
}

}  // namespace
}  // namespace orvgen::test
