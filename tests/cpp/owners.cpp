// SPDX-License-Identifier: MIT
// The objects that own something, statuses and exceptions.
#include <array>
#include <orvgen/check.hpp>
#include <type_traits>
#include <utility>

#include "cpp/typed.h"

namespace orvgen::test {
namespace {

template <class Object>
constexpr bool moveOnly =
    std::is_nothrow_move_constructible_v<Object>&& std::is_nothrow_move_assignable_v<Object> &&
    !std::is_copy_constructible_v<Object> && !std::is_copy_assignable_v<Object>;
static_assert(moveOnly<WhtBuffer<float>> && moveOnly<Dct4<double>>);

template <class T>
class Owners : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(Owners, Reals);

TYPED_TEST(Owners, PlansTransformAsTheFunctions) {
    using T = TypeParam;
    for (int n = 2; n <= 4096; n *= 2) {
        const std::vector<T> x = samples<T>(static_cast<std::size_t>(n), 1);
        std::vector<T> wanted = poison<T>(x.size()), y = poison<T>(x.size());
        typename detail::Dct4Functions<T>::Spec* spec = nullptr;
        ASSERT_EQ(detail::Dct4Functions<T>::initAlloc(&spec, n), orvOk);
        ASSERT_EQ(detail::Dct4Functions<T>::run(x.data(), wanted.data(), spec), orvOk);
        ASSERT_EQ(detail::Dct4Functions<T>::free(spec), orvOk);

        Dct4<T> plan{Length{n}};
        ASSERT_EQ(plan.status(), Status::ok);
        EXPECT_EQ(plan.length(), Length{n});
        EXPECT_EQ(plan.run(x, y), Status::ok);
        EXPECT_TRUE(sameBytes(y, wanted)) << n;
        y = x;
        EXPECT_EQ(plan.run(y, y), Status::ok);
        EXPECT_TRUE(sameBytes(y, wanted)) << n << " in place";

        std::vector<std::byte> memory(Dct4<T>::bytes(Length{n}) + 1);
        Dct4<T> placed(Length{n}, std::span(memory).subspan(1));
        y = poison<T>(x.size());
        EXPECT_EQ(placed.run(x, y), Status::ok);
        EXPECT_TRUE(sameBytes(y, wanted)) << n << " in memory of the caller's";
        Dct4<T> tooSmall(Length{n}, std::span(memory).subspan(2));
        EXPECT_EQ(tooSmall.status(), Status::errExtent);
        EXPECT_EQ(tooSmall.run(x, y), Status::errExtent);
    }
}

TYPED_TEST(Owners, LengthsThatMeanNothingAreRefused) {
    using T = TypeParam;
    const int most = Dct4<T>::maxLength.value;
    EXPECT_TRUE(Dct4<T>::supports(Length{most}));
    for (const long n :
         {0L, 1L, 3L, 6L, 9L, 12L, 17L, 33L, 65L, 1025L, 2L * most, most + 1L, 1L << 29,
          (1L << 29) + 1, 1L << 30, (1L << 30) + 1, 1L << 31, 1L << 32, -8L}) {
        EXPECT_FALSE(Dct4<T>::supports(Length{n})) << n;
        Dct4<T> plan{Length{n}};
        EXPECT_EQ(plan.status(), Status::errSize) << n;
        EXPECT_FALSE(plan) << n;
        EXPECT_EQ(plan.get(), nullptr) << n;
        std::vector<T> y = poison<T>(16);
        EXPECT_EQ(plan.run(std::vector<T>(16), y), Status::errSize) << n;
        EXPECT_TRUE(sameBytes(y, poison<T>(16))) << n;
        std::vector<std::byte> memory(1 << 12);
        EXPECT_EQ(Dct4<T>(Length{n}, memory).status(), Status::errSize) << n;
        EXPECT_EQ(memory, std::vector<std::byte>(1 << 12)) << n;
        EXPECT_EQ(Dct4<T>::bytes(Length{n}), 0U) << n;
    }
}

TYPED_TEST(Owners, PlansMove) {
    using T = TypeParam;
    Dct4<T> plan{Length{16}};
    auto* const spec = plan.get();
    ASSERT_NE(spec, nullptr);
    Dct4<T> moved(std::move(plan));
    EXPECT_EQ(moved.get(), spec);
    EXPECT_EQ(plan.get(), nullptr);  // NOLINT(bugprone-use-after-move): a moved plan is no plan
    EXPECT_EQ(plan.status(), Status::errNullPtr);
    plan = Dct4<T>{Length{32}};
    EXPECT_EQ(plan.length(), Length{32});
    std::swap(plan, moved);
    EXPECT_EQ(plan.get(), spec);
    Dct4<T>& same = plan;
    plan = std::move(same);
    EXPECT_EQ(plan.get(), spec);
    EXPECT_EQ(plan.length(), Length{16});
    std::vector<T> y = poison<T>(16);
    EXPECT_EQ(plan.run(std::vector<T>(15), y), Status::errExtent);
    EXPECT_EQ(plan.run(std::vector<T>(16), std::span(y).first(15)), Status::errExtent);
    EXPECT_TRUE(sameBytes(y, poison<T>(16)));
}

TYPED_TEST(Owners, BuffersServeTheirOrderAndThoseBelow) {
    using T = TypeParam;
    for (int k = 1; k <= 13; ++k) {
        WhtBuffer<T> buffer{Order{k}};
        ASSERT_TRUE(buffer);
        for (int order = 1; order <= 13; ++order)
            EXPECT_EQ(buffer.serves(Order{order}), order <= 7 || order <= k) << k << ' ' << order;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer.data()) % 16, 0U);
        EXPECT_EQ(buffer.data() == nullptr, k <= 7);
    }
    WhtBuffer<T> eight{Order{8}};
    std::vector<T> y = poison<T>(512);
    EXPECT_EQ(wht(std::vector<T>(512), y, Scale::none, eight), Status::errExtent);
    EXPECT_EQ(wht<Order{9}>(std::vector<T>(512), y, Scale::none, eight), Status::errExtent);
    EXPECT_EQ(wht(std::vector<T>(512), y, Scale::none, WhtBuffer<T>()), Status::errExtent);
    for (const int k : {0, -1, 14, 40}) {
        const WhtBuffer<T> none{Order{k}};
        EXPECT_EQ(none.status(), Status::errSize);
        EXPECT_FALSE(none.serves(Order{8}));
        EXPECT_EQ(wht(std::vector<T>(512), y, Scale::none, none), Status::errSize);
    }
    EXPECT_TRUE(sameBytes(y, poison<T>(512)));
}

TYPED_TEST(Owners, BuffersMove) {
    using T = TypeParam;
    WhtBuffer<T> nine{Order{9}};
    std::uint8_t* const memory = nine.data();
    WhtBuffer<T> moved(std::move(nine));
    EXPECT_EQ(moved.data(), memory);
    EXPECT_TRUE(moved.serves(Order{9}));
    // NOLINTNEXTLINE(bugprone-use-after-move): a moved buffer is one without memory
    EXPECT_FALSE(nine.serves(Order{8}));
    EXPECT_TRUE(nine.serves(Order{7}));
    nine = std::move(moved);
    EXPECT_EQ(nine.data(), memory);
    WhtBuffer<T>& same = nine;
    nine = std::move(same);
    EXPECT_EQ(nine.data(), memory);
}

TYPED_TEST(Owners, TakeMemoryOfTheCallers) {
    using T = TypeParam;
    const std::size_t bytes = WhtBuffer<T>::bytes(Order{8});
    ASSERT_EQ(bytes, 256 * sizeof(T));
    alignas(16) std::array<std::byte, 4096> memory{};
    const std::span all(memory);
    const WhtBuffer<T> buffer(Order{8}, all.first(bytes));
    ASSERT_TRUE(buffer);
    EXPECT_EQ(static_cast<const void*>(buffer.data()), memory.data());
    const std::vector<T> x = samples<T>(256, 1);
    std::vector<T> y(256), wanted(256);
    EXPECT_EQ(wht<Order{8}>(x, y, Scale::none, buffer), Status::ok);
    EXPECT_EQ(wht<Order{8}>(x, wanted, Scale::none, WhtBuffer<T>{Order{8}}), Status::ok);
    EXPECT_TRUE(sameBytes(y, wanted));
    EXPECT_EQ(WhtBuffer<T>(Order{8}, all.first(bytes - 1)).status(), Status::errExtent);
    EXPECT_EQ(WhtBuffer<T>(Order{8}, all.subspan(8)).status(), Status::errExtent);
    EXPECT_EQ(WhtBuffer<T>(Order{14}, all).status(), Status::errSize);
    EXPECT_EQ(WhtBuffer<T>::bytes(Order{14}), 0U);
}

TEST(Statuses, ExceptionsAreThrownWhereAskedFor) {
    check(Status::ok);
    for (const Status status : {Status::errPlan, Status::errSize, Status::errNullPtr,
                                Status::errFlag, Status::errExtent}) {
        try {
            check(status);
            FAIL() << "nothing thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.status(), status);
            EXPECT_STREQ(error.what(), statusText(status));
        }
    }
    EXPECT_THROW(check(Dct4<float>(Length{33})), Error);
    Dct4<float> plan = check(Dct4<float>(Length{64}));
    EXPECT_EQ(plan.length(), Length{64});
    EXPECT_TRUE(check(WhtBuffer<double>(Order{9})));
}

TEST(Statuses, TheRecordIsTheLibrarys) { EXPECT_EQ(&libraryVersion(), orvgenGetLibVersion()); }

}  // namespace
}  // namespace orvgen::test
