// SPDX-License-Identifier: MIT
// The by-length functions: what they refuse, and that each length reaches its own kernel.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "frame/families.h"

namespace {

constexpr std::int32_t flags[] = {orvScaleFwdByN, orvScaleInvByN, orvScaleBySqrtN, orvScaleNone};
constexpr std::int32_t badFlags[] = {0, 3, 5, 9, 16, -1};

// Numbers that no family has, with the lowest and the highest that it has.
std::vector<std::int32_t> outOfRange(std::int32_t first, std::int32_t last) {
    using Limits = std::numeric_limits<std::int32_t>;
    return {first - 1,
            first - 2,
            -1,
            -2,
            -last,
            last + 1,
            last + 2,
            1 << 8,
            1 << 16,
            (1 << 16) + first,
            1 << 30,
            first + (1 << 30),
            Limits::max(),
            Limits::min(),
            Limits::min() + first};
}

// Source and destination for the largest transform, on 16-byte boundaries, the destination filled
// with a pattern that no transform leaves.
template <class T, int elements>
struct Buffers {
    alignas(16) std::array<T, elements> src;
    alignas(16) std::array<T, elements> dst;

    Buffers() {
        std::mt19937 random(20100317);
        std::uniform_real_distribution<float> number(-1, 1);
        for (T& x : src) fill(x, random, number);
        std::memset(dst.data(), 0xCB, sizeof dst);
    }

    bool operator==(const Buffers& other) const {
        return std::memcmp(src.data(), other.src.data(), sizeof src) == 0 &&
               std::memcmp(dst.data(), other.dst.data(), sizeof dst) == 0;
    }

  private:
    template <class U>
    static void fill(U& x, std::mt19937& random, auto& number) {
        if constexpr (requires { x.re; }) {
            x.re = number(random);
            x.im = number(random);
        } else {
            x = number(random);
        }
    }
};

// One family: `byNumber(number, src, dst, flag)` against `members`, the fixed functions by number.
template <int elements, class T, class ByNumber, class Members>
void checkFamily(const orvgen::Numbers& numbers, ByNumber byNumber, const Members& members,
                 const char* name) {
    for (const auto number : outOfRange(numbers.first, numbers.last)) {
        if (numbers.has(number)) continue;
        SCOPED_TRACE(testing::Message() << name << ", number " << number);
        EXPECT_EQ(byNumber(number, nullptr, nullptr, orvScaleNone), orvErrSize);
        EXPECT_EQ(byNumber(number, nullptr, nullptr, 3), orvErrSize);
        Buffers<T, elements> b;
        EXPECT_EQ(byNumber(number, b.src.data(), b.dst.data(), orvScaleNone), orvErrSize);
        EXPECT_TRUE((b == Buffers<T, elements>()));
    }

    ASSERT_EQ(members.size(), numbers.count());
    for (const auto& [number, member] : members) {
        SCOPED_TRACE(testing::Message() << name << ", number " << number);
        for (const auto flag : flags) {
            Buffers<T, elements> expected;
            Buffers<T, elements> b;
            ASSERT_EQ(member(expected.src.data(), expected.dst.data(), flag), orvOk);
            EXPECT_EQ(byNumber(number, b.src.data(), b.dst.data(), flag), orvOk);
            EXPECT_TRUE(b == expected) << "flag " << flag;
            EXPECT_FALSE((b == Buffers<T, elements>())) << "nothing was written";
        }
        for (const auto flag : badFlags) {
            Buffers<T, elements> b;
            EXPECT_EQ(byNumber(number, b.src.data(), b.dst.data(), flag), orvErrFlag) << flag;
            EXPECT_EQ(byNumber(number, nullptr, b.dst.data(), flag), orvErrNullPtr) << flag;
            EXPECT_EQ(byNumber(number, b.src.data(), nullptr, flag), orvErrNullPtr) << flag;
            EXPECT_TRUE((b == Buffers<T, elements>())) << flag;
        }
    }
}

#define ROW(NAME, N, T) {N, orvg##NAME##_##N##_##T},

// CCS, the longest layout, has two elements more than the transform.
#define LENGTH_FAMILY(NAME, T, LIST)                                                        \
    TEST(Dispatch, NAME##_##T) {                                                            \
        using Kernel = OrvStatus(const Orv##T*, Orv##T*, std::int32_t);                     \
        const std::map<int, Kernel*> members = {LIST(ROW, NAME, T)};                        \
        const auto byLength = [](std::int32_t len, const Orv##T* src, Orv##T* dst,          \
                                 std::int32_t flag) {                                       \
            return orvg##NAME##_##T(src, dst, len, flag);                                   \
        };                                                                                  \
        checkFamily<orvgen::kLengths.last + 4, Orv##T>(orvgen::kLengths, byLength, members, \
                                                       #NAME "_" #T);                       \
    }
ORVGEN_LENGTH_FAMILIES(LENGTH_FAMILY)

alignas(16) [[maybe_unused]] std::array<std::uint8_t, 1 << 17> scratch;

#undef ROW
#define ROW(NAME, K, T)                                                 \
    {K, [](const Orv##T* src, Orv##T* dst, std::int32_t flag) {         \
         return orvg##NAME##_##K##_##T(src, dst, flag, scratch.data()); \
     }},

#define ORDER_FAMILY(NAME, T, LIST)                                                       \
    TEST(Dispatch, NAME##_##T) {                                                          \
        using Kernel = OrvStatus (*)(const Orv##T*, Orv##T*, std::int32_t);               \
        const std::map<int, Kernel> members = {LIST(ROW, NAME, T)};                       \
        const auto byOrder = [](std::int32_t order, const Orv##T* src, Orv##T* dst,       \
                                std::int32_t flag) {                                      \
            return orvg##NAME##_##T(src, dst, order, flag, scratch.data());               \
        };                                                                                \
        checkFamily<1 << orvgen::kOrders.last, Orv##T>(orvgen::kOrders, byOrder, members, \
                                                       #NAME "_" #T);                     \
    }
ORVGEN_ORDER_FAMILIES(ORDER_FAMILY)

}  // namespace
