// SPDX-License-Identifier: MIT
// The spectrum of the roots that Rader's algorithm multiplies by.
#include <gtest/gtest.h>

#include <cmath>

#include "dft/rader.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

TEST(RaderConstants, AreThoseOfTheTableAtSeven) {
    const auto B = dft::raderConstants(dft::Direction::Forward, 7);
    for (const auto& row : dataTable("rader7_constants").rows()) {
        const auto k = static_cast<std::size_t>(row.integer("k"));
        EXPECT_NEAR(B[k].re.asDouble(), row.number("re"), 5.1e-8);
        EXPECT_NEAR(B[k].im.asDouble(), row.number("im"), 5.1e-8);
    }
}

TEST(RaderConstants, HaveOneModulusButTheFirst) {
    for (const long p : dataTable("complex_f32_rader").list("length")) {
        const auto B = dft::raderConstants(dft::Direction::Forward, static_cast<std::size_t>(p));
        const auto L = static_cast<double>(p - 1);
        ASSERT_EQ(B.size(), static_cast<std::size_t>(p - 1));
        EXPECT_EQ(B[0].re.asDouble(), -1 / L);
        EXPECT_TRUE(B[0].im.isZero());
        const auto& middle = B[static_cast<std::size_t>(p - 1) / 2];
        EXPECT_TRUE(p % 4 == 1 ? middle.im.isZero() : middle.re.isZero());
        for (std::size_t k = 1; k < B.size(); ++k)
            EXPECT_NEAR(std::hypot(B[k].re.asDouble(), B[k].im.asDouble()),
                        std::sqrt(static_cast<double>(p)) / L, 1e-15);
    }
}

}  // namespace
}  // namespace orvgen::test
