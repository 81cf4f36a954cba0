// SPDX-License-Identifier: MIT
// Statuses and the size query; several calls at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <thread>

#include "memory.h"
#include "reference.h"
#include "support/guarded.h"
#include "wht/functions.h"

namespace {

using namespace orvgen::test;

template <class T>
struct WhtContract : testing::Test {};
using Reals = testing::Types<Orv32f, Orv64f>;
TYPED_TEST_SUITE(WhtContract, Reals);

constexpr std::int32_t badOrders[] = {0,
                                      14,
                                      15,
                                      -1,
                                      -13,
                                      32,
                                      1 << 16 | 8,
                                      std::numeric_limits<std::int32_t>::max(),
                                      std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::min() + 8};

TYPED_TEST(WhtContract, SizeQueryStoresTheTable) {
    const DataTable& table = dataTable("wht_buffer");
    ASSERT_EQ(table.rows().size(), 13U);
    for (const DataRow& row : table.rows()) {
        const long order = row.integer("order");
        const auto& f = orderFunctions<TypeParam>()[static_cast<std::size_t>(order - 1)];
        ASSERT_EQ(f.order, order);
        std::int32_t size = -77;
        EXPECT_EQ(f.bufferSize(f.order, &size), orvOk);
        const long bytes = row.integer(isSingle<TypeParam> ? "f32_bytes" : "f64_bytes");
        const long tile = row.integer(isSingle<TypeParam> ? "f32_tile" : "f64_tile");
        const long points = row.integer("points");
        EXPECT_EQ(size, bytes) << "order " << order;
        EXPECT_EQ(points, 1L << order);
        EXPECT_EQ(bytes, bytes == 0 ? 0 : (points + tile) * static_cast<long>(sizeof(TypeParam)));
    }
}

TYPED_TEST(WhtContract, SizeQueryRefusesOrders) {
    const auto query = orderFunctions<TypeParam>()[0].bufferSize;
    for (const std::int32_t order : badOrders) {
        std::int32_t size = -77;
        EXPECT_EQ(query(order, &size), orvErrSize) << order;
        EXPECT_EQ(size, -77) << order;
        EXPECT_EQ(query(order, nullptr), orvErrSize) << order;
    }
}

#ifndef __SANITIZE_ADDRESS__  // which ends the program at a store to null
// The size pointer is not tested: with a good order it is written to as it stands.
TYPED_TEST(WhtContract, SizeQueryDoesNotTestItsPointer) {
    const auto query = orderFunctions<TypeParam>()[0].bufferSize;
    for (const std::int32_t order : orvgen::kOrders) {
        EXPECT_NE(catchFault([&] { query(order, nullptr); }, nullptr), "") << order;
    }
}

#endif

// The buffer's alignment is not tested: the accesses to it are aligned ones, in the twin too, and
// fault.
TYPED_TEST(WhtContract, BufferOffItsBoundaryFaults) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        if (f.bufferBytes() == 0) continue;
        const AlignedArray<TypeParam> src(f.points()), dst(f.points());
        std::fill(src.data(), src.data() + f.points(), TypeParam{1});
        const AlignedArray<std::uint8_t> buffer(f.bufferBytes(), 8);
        for (const auto call : {f.kernel, f.twin}) {
            EXPECT_NE(catchFault([&] { call(src.data(), dst.data(), orvScaleNone, buffer.data()); },
                                 nullptr),
                      "")
                << f.name;
        }
    }
}

TYPED_TEST(WhtContract, OrderIsTestedFirst) {
    const auto byOrder = orderFunctions<TypeParam>()[0].byOrder;
    for (const std::int32_t order : badOrders) {
        EXPECT_EQ(byOrder(nullptr, nullptr, order, 3, nullptr), orvErrSize) << order;
        EXPECT_EQ(byOrder(nullptr, nullptr, order, orvScaleNone, nullptr), orvErrSize) << order;
        const AlignedArray<TypeParam> x(4), before(4);
        EXPECT_EQ(
            byOrder(x.data(), x.data(), order, orvScaleNone, reinterpret_cast<std::uint8_t*>(1)),
            orvErrSize)
            << order;
        EXPECT_TRUE(sameBytes(x.data(), before.data(), 4));
    }
    for (const std::int32_t order : orvgen::kOrders) {
        EXPECT_EQ(byOrder(nullptr, nullptr, order, 3, nullptr), orvErrNullPtr) << order;
    }
}

// A refused call touches neither dst nor the buffer, whatever the alignment.
TYPED_TEST(WhtContract, RefusalsTouchNothing) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        const std::size_t n = f.points();
        for (const std::size_t displacement : {std::size_t{0}, sizeof(TypeParam), std::size_t{8}}) {
            const AlignedArray<TypeParam> src(n, displacement), dst(n, displacement);
            const AlignedArray<TypeParam> before(n, displacement);
            const AlignedArray<std::uint8_t> buffer(f.bufferBytes()), untouched(f.bufferBytes());
            const auto untouchedAfter = [&](const TypeParam* s, TypeParam* d, std::int32_t flag) {
                for (const auto call : {f.kernel, f.twin})
                    if (call) {
                        EXPECT_EQ(call(s, d, flag, buffer.data()),
                                  s && d ? orvErrFlag : orvErrNullPtr)
                            << f.name << ", flag " << flag << ", off by " << displacement;
                        EXPECT_TRUE(sameBytes(dst.data(), before.data(), n)) << f.name;
                        EXPECT_TRUE(sameBytes(buffer.data(), untouched.data(), f.bufferBytes()))
                            << f.name;
                    }
            };
            for (const std::int32_t flag : {0, 3, 5, 9, 16, -1, 6, 7, 10, 12, 15, 0x10008}) {
                untouchedAfter(src.data(), dst.data(), flag);
                untouchedAfter(nullptr, dst.data(), flag);
                untouchedAfter(src.data(), nullptr, flag);
                untouchedAfter(nullptr, nullptr, flag);
            }
            for (const std::int32_t flag : {1, 2, 4, 8}) {
                untouchedAfter(nullptr, dst.data(), flag);
                untouchedAfter(src.data(), nullptr, flag);
            }
        }
    }
}

// Eight threads with a dst and a buffer of their own, or none, and one src for all.
TYPED_TEST(WhtContract, ThreadsDoNotMeet) {
    for (const auto& f : orderFunctions<TypeParam>()) {
        const std::size_t n = f.points();
        const AlignedArray<TypeParam> src(n);
        const std::vector<TypeParam> values = randomValues<TypeParam>(n, 3);
        std::copy(values.begin(), values.end(), src.data());
        std::vector<TypeParam> expected(n);
        referenceTransform(src.data(), expected.data(), f.order,
                           scaleOf<TypeParam>(f.order, orvScaleBySqrtN));
        std::vector<int> wrong(8, 0);
        std::vector<std::thread> threads;
        for (std::size_t t = 0; t < wrong.size(); ++t)
            threads.emplace_back([&, t] {
                const AlignedArray<TypeParam> dst(n, t % 4 == 3 ? sizeof(TypeParam) : 0);
                const AlignedArray<std::uint8_t> buffer(f.bufferBytes());
                for (int i = 0; i < 20; ++i) {
                    dst.poison(i);
                    const auto status = f.kernel(src.data(), dst.data(), orvScaleBySqrtN,
                                                 t % 2 ? buffer.data() : nullptr);
                    wrong[t] += status != orvOk;
                    wrong[t] += !sameBytes(dst.data(), expected.data(), n);
                }
            });
        for (std::thread& t : threads) t.join();
        for (const int w : wrong) EXPECT_EQ(w, 0) << f.name;
    }
}

}  // namespace
