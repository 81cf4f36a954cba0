// SPDX-License-Identifier: MIT
// Where the functions of the built library and their constants begin: fetched and loaded by whole
// cache lines, whatever stands before them.
#include "support/boundaries.h"

#include <gtest/gtest.h>

#include "library.h"

namespace orvgen::test {
namespace {

bool isKernel(const std::string& name) {
    return (name.starts_with("orvg") || name.starts_with("owng")) &&
           name.find('_') != std::string::npos &&
           name.find_first_of("0123456789") < name.rfind('_') &&
           name.find("DCT4") == std::string::npos;
}

TEST(KernelsAndPools, BeginOnCacheLines) {
    int kernels = 0;
    for (const Symbol& s : library().image().symbols()) {
        if (!s.function || !isKernel(s.name)) continue;
        ++kernels;
        EXPECT_EQ(offTheirBoundary(library(), s.name), std::vector<std::string>());
    }
    EXPECT_GT(kernels, 1160);
}

}  // namespace
}  // namespace orvgen::test
