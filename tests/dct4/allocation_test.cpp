// SPDX-License-Identifier: MIT
// The shared library with the allocator interposed: this program's own orvMalloc and orvFree are
// the ones that the dynamic linker gives it.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "support/dct4_functions.h"

namespace {

struct Allocator {
    bool failing = false;
    std::vector<std::int32_t> requests;
    std::vector<void*> freed;
    std::uint64_t bumpAtFree = 0;
    void* last = nullptr;
};
Allocator allocator;

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void* orvMalloc(std::int32_t bytes) {
    allocator.requests.push_back(bytes);
    allocator.last = allocator.failing
                         ? nullptr
                         : std::aligned_alloc(64, (static_cast<std::size_t>(bytes) + 63) / 64 * 64);
    return allocator.last;
}

__attribute__((visibility("default"))) void orvFree(void* block) {
    allocator.freed.push_back(block);
    if (block != nullptr) std::memcpy(&allocator.bumpAtFree, block, sizeof allocator.bumpAtFree);
    std::free(block);
}
}

namespace orvgen::test::dct4 {
namespace {

template <class Real>
class Dct4AllocationTest : public testing::Test {
  protected:
    using Exported = Dct4Functions<Real>;
    using Spec = typename Exported::Spec;
    Dct4AllocationTest() { allocator = {}; }
};
using Elements = testing::Types<Orv32f, Orv64f>;
TYPED_TEST_SUITE(Dct4AllocationTest, Elements);

TYPED_TEST(Dct4AllocationTest, TakesOneBlockAndGivesItBack) {
    for (std::int32_t N = 2; N <= 131072; N *= 2) {
        allocator = {};
        std::int32_t size = 0;
        ASSERT_EQ(TestFixture::Exported::getSize(N, &size), orvOk);
        typename TestFixture::Spec* spec = nullptr;
        ASSERT_EQ(TestFixture::Exported::initAlloc(&spec, N), orvOk);
        ASSERT_EQ(allocator.requests, std::vector<std::int32_t>{size}) << N;
        auto* const block = static_cast<std::uint8_t*>(allocator.last);
        EXPECT_EQ(reinterpret_cast<std::uint8_t*>(spec), block + 64);

        std::vector<TypeParam> x(static_cast<std::size_t>(N), 1), y(x.size());
        EXPECT_EQ(TestFixture::Exported::run(x.data(), y.data(), spec), orvOk);
        EXPECT_EQ(allocator.requests.size(), 1U) << "a run allocates nothing";

        EXPECT_EQ(TestFixture::Exported::free(spec), orvOk);
        EXPECT_EQ(allocator.freed, std::vector<void*>{block}) << N;
        // The destructors brought the arena back to its start.
        EXPECT_EQ(allocator.bumpAtFree, reinterpret_cast<std::uint64_t>(block) + 64) << N;
    }
}

TYPED_TEST(Dct4AllocationTest, FailureReachesTheCallerAsANullBlock) {
    for (const std::int32_t N : {2, 32, 64, 4096}) {
        allocator = {};
        allocator.failing = true;
        auto* const before = reinterpret_cast<typename TestFixture::Spec*>(&allocator);
        auto* spec = before;
        EXPECT_EQ(TestFixture::Exported::initAlloc(&spec, N), orvErrNullPtr);
        EXPECT_EQ(spec, before);
        EXPECT_EQ(allocator.requests.size(), 1U);
        EXPECT_EQ(allocator.freed, std::vector<void*>{nullptr})
            << "null is handed back all the same";
    }
}

TYPED_TEST(Dct4AllocationTest, RefusedLengthAllocatesNothing) {
    for (const std::int32_t N : {0, 1, -1, 3, 96, 100, 1000, 1022, 3072, 134217728}) {
        auto* const before = reinterpret_cast<typename TestFixture::Spec*>(&allocator);
        auto* spec = before;
        EXPECT_EQ(TestFixture::Exported::initAlloc(&spec, N), orvErrSize) << N;
        EXPECT_EQ(spec, before);
        EXPECT_EQ(TestFixture::Exported::initAlloc(nullptr, N), orvErrNullPtr);
    }
    EXPECT_EQ(TestFixture::Exported::initAlloc(nullptr, 64), orvErrNullPtr);
    EXPECT_TRUE(allocator.requests.empty());
    EXPECT_TRUE(allocator.freed.empty());
}

TYPED_TEST(Dct4AllocationTest, FreeRefusesNull) {
    EXPECT_EQ(TestFixture::Exported::free(nullptr), orvErrNullPtr);
    EXPECT_TRUE(allocator.freed.empty());
}

// Free hands on the base of the block, wherever the plan came from.
TYPED_TEST(Dct4AllocationTest, FreeTakesAPlanOfInitToo) {
    std::int32_t size = 0;
    ASSERT_EQ(TestFixture::Exported::getSize(64, &size), orvOk);
    auto* block = static_cast<std::uint8_t*>(orvMalloc(size));
    typename TestFixture::Spec* spec = nullptr;
    ASSERT_EQ(TestFixture::Exported::init(&spec, 64, block), orvOk);
    EXPECT_EQ(TestFixture::Exported::free(spec), orvOk);
    EXPECT_EQ(allocator.freed, std::vector<void*>{block});
}

TYPED_TEST(Dct4AllocationTest, FreeGoesOnAtAnUnknownRule) {
    typename TestFixture::Spec* spec = nullptr;
    ASSERT_EQ(TestFixture::Exported::initAlloc(&spec, 64), orvOk);
    void* const block = allocator.last;
    const std::int32_t rule = 77;
    std::memcpy(reinterpret_cast<std::uint8_t*>(spec) + 64, &rule, sizeof rule);
    EXPECT_EQ(TestFixture::Exported::free(spec), orvOk);
    EXPECT_EQ(allocator.freed, std::vector<void*>{block});
    // Only the scratch was skipped.
    EXPECT_EQ(allocator.bumpAtFree,
              reinterpret_cast<std::uint64_t>(block) + 64 + 64 * sizeof(TypeParam));
}

}  // namespace
}  // namespace orvgen::test::dct4
