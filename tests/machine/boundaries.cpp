// SPDX-License-Identifier: MIT
// Where the functions of the built library and their constants begin: fetched and loaded by whole
// cache lines, whatever stands before them.
#include "support/boundaries.h"

#include <gtest/gtest.h>

#include "frame/names.h"
#include "library.h"

namespace orvgen::test {
namespace {

TEST(KernelsAndPools, BeginOnCacheLines) {
    const std::vector<Member> kernels = allKernels();
    ASSERT_EQ(kernels.size(), 1160U);
    for (const Member& k : kernels) {
        EXPECT_EQ(offTheirBoundary(library(), k.name()), std::vector<std::string>());
        if (!k.family->hasTwin(k.number)) continue;
        const std::string twin = twinName(*k.family, k.number);
        EXPECT_EQ(offTheirBoundary(library(), twin), std::vector<std::string>());
    }
}

}  // namespace
}  // namespace orvgen::test
