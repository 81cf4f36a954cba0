// SPDX-License-Identifier: MIT
// Stands in test programs that hold or load the second build: where the processor could not run it,
// they skip all tests.
#include <gtest/gtest.h>

#include "support/library_file.h"

namespace orvgen::test {
namespace {

class ProcessorLevel : public testing::Environment {
    void SetUp() override {
        if (!processorRunsIt()) GTEST_SKIP() << "this processor is below x86-64-v3";
    }
};

// GoogleTest owns and deletes it.
[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new ProcessorLevel);

}  // namespace
}  // namespace orvgen::test
