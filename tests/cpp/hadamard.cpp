// SPDX-License-Identifier: MIT
// The Walsh-Hadamard transform of every order.
#include "cpp/calls.h"

namespace orvgen::test {
namespace {

// With a buffer, and without where none is needed.
template <std::int32_t K, class E>
Status hadamard(const E* x, E* y, Scale s) {
    constexpr std::size_t N = std::size_t{1} << K;
    if constexpr (K <= 7)
        return wht<Order{K}>(fixed<const E, N>(x), any<E>(y, N), s);
    else
        return wht<Order{K}>(fixed<const E, N>(x), any<E>(y, N), s, WhtBuffer<E>(Order{K}));
}
#define HADAMARD(NAME, K, T)                                                                 \
    {#NAME "_" #K "_" #T,                                                                    \
     1U << K,                                                                                \
     1U << K,                                                                                \
     1U << K,                                                                                \
     [](const E* x, E* y, Scale s) {                                                         \
         return Status{orvg##NAME##_##K##_##T(x, y, static_cast<std::int32_t>(s), nullptr)}; \
     },                                                                                      \
     hadamard<K, E>},
#define COMPARE_HADAMARD(TITLE, T)                                                   \
    TEST(FixedLengths, TITLE) {                                                      \
        using E = Orv##T;                                                            \
        const std::vector<Calls<E>> list = {ORVGEN_ORDERS(HADAMARD, WHT, T)};        \
        ASSERT_EQ(list.size(), 13U);                                                 \
        compare<E>(list, {[](const E* x, E* y, std::size_t n, Scale s) {             \
                              return wht(any<const E>(x, n), any<E>(y, n), s,        \
                                         WhtBuffer<E>(Order{13}));                   \
                          },                                                         \
                          [](const E* x, E* y, std::size_t n, Scale s) {             \
                              const Order order{std::countr_zero(n)};                \
                              return wht(any<const E>(x, n), any<E>(y, n), order, s, \
                                         WhtBuffer<E>(order));                       \
                          }});                                                       \
    }
COMPARE_HADAMARD(Hadamard32, 32f)
COMPARE_HADAMARD(Hadamard64, 64f)

// The order as the extent of the arrays.
TEST(FixedLengths, OfHadamardFollowFromTheExtents) {
    const std::vector<float> x = samples<float>(256, 1);
    std::array<float, 256> y{}, wanted{};
    const WhtBuffer<float> buffer(Order{8});
    EXPECT_EQ(orvgWHT_8_32f(x.data(), wanted.data(), orvScaleNone, nullptr), orvOk);
    EXPECT_EQ(wht(x, y, Scale::none, buffer), Status::ok);
    EXPECT_TRUE(sameBytes(y, wanted));
}

}  // namespace
}  // namespace orvgen::test
