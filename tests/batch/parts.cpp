// SPDX-License-Identifier: MIT
// The functions for split arrays where the parts of one side, or of both, are those of interleaved
// elements: real and imaginary parts one number from each other.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "batch/families.h"

namespace orvgen::test::batch {
namespace {

constexpr int most = 64, count = 35;  // transforms: two blocks of any target, and three left over

// One array of complex elements, by columns or rows.
template <class R>
struct Elements {
    bool isInterleaved, areColumns;
    int n;
    std::vector<R> numbers = std::vector<R>(2 * most * count);

    std::ptrdiff_t step() const { return isInterleaved ? 2 : 1; }
    std::ptrdiff_t stride() const { return step() * (areColumns ? count : 1); }
    std::ptrdiff_t distance() const { return step() * (areColumns ? 1 : n); }
    R* re() { return numbers.data(); }
    R* im() { return re() + (isInterleaved ? 1 : most * count); }
    R& at(int t, int j, int part) { return (part ? im() : re())[t * distance() + j * stride()]; }
};

template <class R, class Split, class Single>
void compare(Split split, Single single) {
    std::mt19937 random(7);
    std::uniform_real_distribution<R> uniform(-1, 1);
    for (const int n : {2, 3, 8, 24, 31, 47, 64})
        for (int form = 0; form < 16; ++form) {
            Elements<R> src{
                .isInterleaved = (form & 1) != 0, .areColumns = (form & 2) != 0, .n = n};
            Elements<R> dst{
                .isInterleaved = (form & 4) != 0, .areColumns = (form & 8) != 0, .n = n};
            for (R& x : src.numbers) x = uniform(random);
            ASSERT_EQ(split(src.re(), src.im(), src.stride(), src.distance(), dst.re(), dst.im(),
                            dst.stride(), dst.distance(), n, count, orvScaleBySqrtN),
                      orvOk);
            int wrong = 0;
            for (int t = 0; t < count; ++t) {
                R x[2 * most + 2] = {}, y[2 * most] = {};
                for (int j = 0; j < n; ++j)
                    for (const int part : {0, 1}) x[2 * j + part] = src.at(t, j, part);
                ASSERT_EQ(single(x, y, n), orvOk);
                for (int j = 0; j < n; ++j)
                    for (const int part : {0, 1})
                        wrong += std::memcmp(&y[2 * j + part], &dst.at(t, j, part), sizeof(R)) != 0;
            }
            EXPECT_EQ(wrong, 0) << n << " points, form " << form;
        }
}

class SplitParts : public testing::TestWithParam<std::uint32_t> {
  protected:
    void SetUp() override { ASSERT_EQ(orvgBatchUse(GetParam()), orvOk); }
    void TearDown() override { ASSERT_EQ(orvgBatchUse(0), orvOk); }
};

TEST_P(SplitParts, MayBeThoseOfInterleavedElements) {
    compare<float>(orvgBatchSplitDFTFwd_CToC_32f, [](const float* x, float* y, int n) {
        return orvgDFTFwd_CToC_32fc(reinterpret_cast<const Orv32fc*>(x),
                                    reinterpret_cast<Orv32fc*>(y), n, orvScaleBySqrtN);
    });
    compare<double>(orvgBatchSplitDFTInv_CToC_64f, [](const double* x, double* y, int n) {
        return orvgDFTInv_CToC_64fc(reinterpret_cast<const Orv64fc*>(x),
                                    reinterpret_cast<Orv64fc*>(y), n, orvScaleBySqrtN);
    });
}

INSTANTIATE_TEST_SUITE_P(Batch, SplitParts, testing::ValuesIn(runnableTargets()));

}  // namespace
}  // namespace orvgen::test::batch
