// SPDX-License-Identifier: MIT
// Stands in every test program that runs with both builds of the product: before the first test it
// reads back which file the loader has mapped, and fails where that is not the one expected.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "orvgen.h"
#include "support/library_file.h"

namespace orvgen::test {
namespace {

class ExpectedLibrary : public testing::Environment {
    void SetUp() override {
        // Named here, so that a program is linked with the library even if its tests only read
        // files.
        void* const function = reinterpret_cast<void*>(&orvgenGetLibVersion);
        Dl_info mapped{};
        ASSERT_NE(dladdr(function, &mapped), 0) << "no library mapped";
        ASSERT_TRUE(std::filesystem::equivalent(mapped.dli_fname, libraryFile()))
            << mapped.dli_fname << " is mapped, not " << libraryFile();
    }
};

// GoogleTest owns and deletes it.
[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new ExpectedLibrary);

}  // namespace
}  // namespace orvgen::test
