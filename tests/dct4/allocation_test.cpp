// The shared library with the allocator interposed: this program's own orvMalloc and orvFree are
// the ones that the dynamic linker gives it.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "orvgen.h"

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

template <class R, class S, OrvStatus (*getSize)(std::int32_t, std::int32_t*),
          OrvStatus (*init)(S**, std::int32_t, std::uint8_t*),
          OrvStatus (*initAlloc)(S**, std::int32_t), OrvStatus (*free)(S*),
          OrvStatus (*run)(const R*, R*, S*)>
struct Family {
    using Real = R;
    using Spec = S;
    static OrvStatus GetSize(std::int32_t N, std::int32_t* size) { return getSize(N, size); }
    static OrvStatus Init(S** spec, std::int32_t N, std::uint8_t* mem) {
        return init(spec, N, mem);
    }
    static OrvStatus InitAlloc(S** spec, std::int32_t N) { return initAlloc(spec, N); }
    static OrvStatus Free(S* spec) { return free(spec); }
    static OrvStatus Run(const R* src, R* dst, S* spec) { return run(src, dst, spec); }
};

using Family32f = Family<Orv32f, OrvDCT4Spec_32f, orvgDCT4GetSize_32f, orvgDCT4Init_32f,
                         orvgDCT4InitAlloc_32f, orvgDCT4Free_32f, orvgDCT4_32f>;
using Family64f = Family<Orv64f, OrvDCT4Spec_64f, orvgDCT4GetSize_64f, orvgDCT4Init_64f,
                         orvgDCT4InitAlloc_64f, orvgDCT4Free_64f, orvgDCT4_64f>;

template <class F>
class AllocationTest : public testing::Test {
  protected:
    AllocationTest() { allocator = {}; }
};
using Families = testing::Types<Family32f, Family64f>;
TYPED_TEST_SUITE(AllocationTest, Families);

TYPED_TEST(AllocationTest, TakesOneBlockAndGivesItBack) {
    for (std::int32_t N = 2; N <= 131072; N *= 2) {
        allocator = {};
        std::int32_t size = 0;
        ASSERT_EQ(TypeParam::GetSize(N, &size), orvOk);
        typename TypeParam::Spec* spec = nullptr;
        ASSERT_EQ(TypeParam::InitAlloc(&spec, N), orvOk);
        ASSERT_EQ(allocator.requests, std::vector<std::int32_t>{size}) << N;
        auto* const block = static_cast<std::uint8_t*>(allocator.last);
        EXPECT_EQ(reinterpret_cast<std::uint8_t*>(spec), block + 64);

        std::vector<typename TypeParam::Real> x(static_cast<std::size_t>(N), 1), y(x.size());
        EXPECT_EQ(TypeParam::Run(x.data(), y.data(), spec), orvOk);
        EXPECT_EQ(allocator.requests.size(), 1U) << "a run allocates nothing";

        EXPECT_EQ(TypeParam::Free(spec), orvOk);
        EXPECT_EQ(allocator.freed, std::vector<void*>{block}) << N;
        // The destructors brought the arena back to its start.
        EXPECT_EQ(allocator.bumpAtFree, reinterpret_cast<std::uint64_t>(block) + 64) << N;
    }
}

TYPED_TEST(AllocationTest, FailureReachesTheCallerAsANullBlock) {
    for (const std::int32_t N : {2, 32, 64, 4096}) {
        allocator = {};
        allocator.failing = true;
        auto* const before = reinterpret_cast<typename TypeParam::Spec*>(&allocator);
        auto* spec = before;
        EXPECT_EQ(TypeParam::InitAlloc(&spec, N), orvErrNullPtr);
        EXPECT_EQ(spec, before);
        EXPECT_EQ(allocator.requests.size(), 1U);
        EXPECT_EQ(allocator.freed, std::vector<void*>{nullptr})
            << "null is handed back all the same";
    }
}

TYPED_TEST(AllocationTest, RefusedLengthAllocatesNothing) {
    for (const std::int32_t N : {0, 1, -1, 3, 96, 100, 1000, 1022, 3072, 134217728}) {
        auto* const before = reinterpret_cast<typename TypeParam::Spec*>(&allocator);
        auto* spec = before;
        EXPECT_EQ(TypeParam::InitAlloc(&spec, N), orvErrSize) << N;
        EXPECT_EQ(spec, before);
        EXPECT_EQ(TypeParam::InitAlloc(nullptr, N), orvErrNullPtr);
    }
    EXPECT_EQ(TypeParam::InitAlloc(nullptr, 64), orvErrNullPtr);
    EXPECT_TRUE(allocator.requests.empty());
    EXPECT_TRUE(allocator.freed.empty());
}

TYPED_TEST(AllocationTest, FreeRefusesNull) {
    EXPECT_EQ(TypeParam::Free(nullptr), orvErrNullPtr);
    EXPECT_TRUE(allocator.freed.empty());
}

// Free hands on the base of the block, wherever the plan came from.
TYPED_TEST(AllocationTest, FreeTakesAPlanOfInitToo) {
    std::int32_t size = 0;
    ASSERT_EQ(TypeParam::GetSize(64, &size), orvOk);
    auto* block = static_cast<std::uint8_t*>(orvMalloc(size));
    typename TypeParam::Spec* spec = nullptr;
    ASSERT_EQ(TypeParam::Init(&spec, 64, block), orvOk);
    EXPECT_EQ(TypeParam::Free(spec), orvOk);
    EXPECT_EQ(allocator.freed, std::vector<void*>{block});
}

TYPED_TEST(AllocationTest, FreeGoesOnAtAnUnknownRule) {
    typename TypeParam::Spec* spec = nullptr;
    ASSERT_EQ(TypeParam::InitAlloc(&spec, 64), orvOk);
    void* const block = allocator.last;
    const std::int32_t rule = 77;
    std::memcpy(reinterpret_cast<std::uint8_t*>(spec) + 64, &rule, sizeof rule);
    EXPECT_EQ(TypeParam::Free(spec), orvOk);
    EXPECT_EQ(allocator.freed, std::vector<void*>{block});
    // Only the scratch was skipped.
    EXPECT_EQ(allocator.bumpAtFree,
              reinterpret_cast<std::uint64_t>(block) + 64 + 64 * sizeof(typename TypeParam::Real));
}

}  // namespace
}  // namespace orvgen::test::dct4
