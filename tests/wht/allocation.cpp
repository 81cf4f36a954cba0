// SPDX-License-Identifier: MIT
// The calls of the allocator: this program's own orvMalloc and orvFree take the place of the core
// library's.
#include <execinfo.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <memory>

#include "memory.h"
#include "reference.h"
#include "support/guarded.h"
#include "wht/functions.h"

namespace {

struct Log {
    int mallocs = 0;
    int frees = 0;
    std::int32_t bytes = -1;
    void* block = nullptr;
    void* freed = nullptr;
    bool fail = false;
    int depth = 0;  // frames of the stack, as the unwinder sees them
};
Log allocations;
// The block: it ends at a guard page.
std::unique_ptr<orvgen::test::GuardedMemory> memory;

}  // namespace

extern "C" __attribute__((visibility("default"))) void* orvMalloc(std::int32_t bytes) {
    ++allocations.mallocs;
    allocations.bytes = bytes;
    void* frames[100];
    allocations.depth = backtrace(frames, 100);
    if (allocations.fail) return nullptr;
    const auto size = static_cast<std::size_t>(bytes);
    memory = std::make_unique<orvgen::test::GuardedMemory>(size + 16);
    std::uint8_t* block = memory->end() - size;
    std::memset(memory->data(), 0xff, memory->size());
    return allocations.block = block;
}

extern "C" __attribute__((visibility("default"))) void orvFree(void* block) {
    ++allocations.frees;
    allocations.freed = block;
    memory.reset();
}

namespace {

using namespace orvgen::test;

template <class T>
struct WhtAllocator : testing::Test {
    void SetUp() override { allocations = {}; }
};
using Reals = testing::Types<Orv32f, Orv64f>;
TYPED_TEST_SUITE(WhtAllocator, Reals);

template <class T>
std::int32_t tableBytes(int order) {
    return static_cast<std::int32_t>(dataTable("wht_buffer")
                                         .row("order", order)
                                         .integer(isSingle<T> ? "f32_bytes" : "f64_bytes"));
}

// Every way to call a kernel: by its name or by order; aligned, by the twin.
template <class T, class Check>
void everyWay(const OrderFunctions<T>& f, std::uint8_t* buffer, std::int32_t flag, Check check) {
    const std::size_t n = f.points();
    const std::vector<T> values = randomValues<T>(n, 3);
    for (const auto& [s, d] :
         {std::pair{0, 0}, std::pair{8, 0}, std::pair{0, 8}, std::pair{8, 8}}) {
        const AlignedArray<T> src(n, static_cast<std::size_t>(s));
        const AlignedArray<T> dst(n, static_cast<std::size_t>(d));
        std::copy(values.begin(), values.end(), src.data());
        allocations = {};
        check(f.kernel(src.data(), dst.data(), flag, buffer), values, dst.data());
        allocations = {};
        check(f.byOrder(src.data(), dst.data(), f.order, flag, buffer), values, dst.data());
    }
}

TYPED_TEST(WhtAllocator, IsAskedForOneBlockOfTheExactSize) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        const std::int32_t bytes = tableBytes<TypeParam>(f.order);
        ASSERT_EQ(bytes > 0, f.order >= 8);
        for (const std::int32_t flag : {1, 2, 4, 8})
            everyWay<TypeParam>(
                f, nullptr, flag,
                [&](OrvStatus status, const std::vector<TypeParam>& x, const TypeParam* y) {
                    EXPECT_EQ(status, orvOk);
                    EXPECT_EQ(allocations.mallocs, bytes ? 1 : 0) << f.name;
                    EXPECT_EQ(allocations.frees, bytes ? 1 : 0) << f.name;
                    if (bytes) {
                        EXPECT_EQ(allocations.bytes, bytes) << f.name;
                        EXPECT_EQ(allocations.freed, allocations.block) << f.name;
                        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(allocations.block) % 16, 0U);
                    }
                    std::vector<TypeParam> expected(x.size());
                    referenceTransform(x.data(), expected.data(), f.order,
                                       scaleOf<TypeParam>(f.order, flag));
                    EXPECT_TRUE(sameBytes(y, expected.data(), x.size())) << f.name;
                });
    }
}

TYPED_TEST(WhtAllocator, IsNotAskedWithABuffer) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        // 16 bytes past a 64-byte boundary: no more than it has to be.
        const AlignedArray<std::uint8_t> buffer(f.bufferBytes(), 16);
        everyWay<TypeParam>(f, buffer.data(), orvScaleNone,
                            [&](OrvStatus status, const auto&, const TypeParam*) {
                                EXPECT_EQ(status, orvOk);
                                EXPECT_EQ(allocations.mallocs, 0) << f.name;
                                EXPECT_EQ(allocations.frees, 0) << f.name;
                            });
    }
}

TYPED_TEST(WhtAllocator, IsNotAskedWhenRefused) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        for (const std::int32_t flag : {0, 3, 5, 9, 16, -1})
            everyWay<TypeParam>(f, nullptr, flag,
                                [&](OrvStatus status, const auto&, const TypeParam*) {
                                    EXPECT_EQ(status, orvErrFlag);
                                    EXPECT_EQ(allocations.mallocs, 0) << f.name;
                                    EXPECT_EQ(allocations.frees, 0) << f.name;
                                });
        allocations = {};
        const AlignedArray<TypeParam> x(f.points());
        EXPECT_EQ(f.kernel(nullptr, x.data(), orvScaleNone, nullptr), orvErrNullPtr);
        EXPECT_EQ(f.kernel(x.data(), nullptr, orvScaleNone, nullptr), orvErrNullPtr);
        EXPECT_EQ(f.byOrder(x.data(), x.data(), 14, orvScaleNone, nullptr), orvErrSize);
        std::int32_t size = 0;
        EXPECT_EQ(f.bufferSize(f.order, &size), orvOk);
        EXPECT_EQ(allocations.mallocs, 0) << f.name;
        EXPECT_EQ(allocations.frees, 0) << f.name;
    }
}

// The unwinding tables of the kernels: seen from the allocator, one frame more than without.
TYPED_TEST(WhtAllocator, IsReachedByUnwindingThroughTheKernel) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        if (f.order < 8) continue;
        for (const std::size_t displacement : {std::size_t{0}, std::size_t{8}}) {
            const AlignedArray<TypeParam> src(f.points(), displacement);
            const AlignedArray<TypeParam> dst(f.points(), displacement);
            orvFree(orvMalloc(1024));
            const int direct = allocations.depth;
            ASSERT_EQ(f.kernel(src.data(), dst.data(), orvScaleNone, nullptr), orvOk);
            EXPECT_EQ(allocations.depth, direct + 1) << f.name;
            EXPECT_GT(direct, 3);
        }
    }
}

// What the allocator returns is not tested: with a null block the kernel faults at the first store
// to it, which is near address 0. In a child process.
TYPED_TEST(WhtAllocator, FaultsWithANullBlock) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        if (f.order < 8) continue;
        for (const std::size_t displacement : {std::size_t{0}, std::size_t{8}}) {
            const AlignedArray<TypeParam> src(f.points(), displacement);
            const AlignedArray<TypeParam> dst(f.points(), displacement);
            const pid_t child = fork();
            ASSERT_NE(child, -1);
            if (child == 0) {
                std::signal(SIGSEGV, SIG_DFL);
                allocations.fail = true;
                f.kernel(src.data(), dst.data(), orvScaleNone, nullptr);
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV) << f.name;
        }
    }
}

}  // namespace
