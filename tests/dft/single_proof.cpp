// SPDX-License-Identifier: MIT
// Every binary32 flow computes its transform.
#include <gtest/gtest.h>

#include "dft/complex_proof.h"
#include "dft/families.h"

namespace orvgen::test {
namespace {

using flows::Direction;
using kernelgen::Real;

class ComplexBinary32Flows : public testing::TestWithParam<int> {};

TEST_P(ComplexBinary32Flows, ComputeTheTransform) {
    const auto families = dft::complexSingleFamilies();
    const Direction directions[] = {Direction::Forward, Direction::Inverse};
    for (std::size_t d = 0; d < 2; ++d) {
        const auto kernel = families[d].kernel(GetParam());
        EXPECT_LT(complexProofError(kernel.flow, directions[d], GetParam()), Real("1e-60"))
            << kernel.name.exported();
        EXPECT_TRUE(kernel.flow.deadNodes().empty()) << kernel.name.exported();
    }
}

INSTANTIATE_TEST_SUITE_P(Lengths, ComplexBinary32Flows,
                         testing::Range(kLengths.first, kLengths.last + 1),
                         [](const auto& length) { return std::to_string(length.param); });

}  // namespace
}  // namespace orvgen::test
