// SPDX-License-Identifier: MIT
// The calls of the real transforms of one layout.
#pragma once

#include "cpp/calls.h"

namespace orvgen::test {

template <Layout layout, std::size_t N, class E>
auto half(E* at) {
    return HalfSpectrum<layout, E, N>(fixed<E, elementsOf(layout, N)>(at));
}
template <Layout layout, class E>
auto anyHalf(E* at, std::size_t n) {
    return HalfSpectrum<layout, E>(std::span(at, elementsOf(layout, n)), Length{n});
}

// E is the element; LAYOUT one of Layout and NAME its name in orvgen.h.
#define REAL_FORWARD(NAME, N, T)                                                              \
    {#NAME "_" #N "_" #T,                                                                     \
     N,                                                                                       \
     N,                                                                                       \
     elementsOf(layout, N),                                                                   \
     [](const E* x, E* y, Scale s) {                                                          \
         return Status{orvgDFTFwd_RTo##NAME##_##N##_##T(x, y, static_cast<std::int32_t>(s))}; \
     },                                                                                       \
     [](const E* x, E* y, Scale s) { return rfft(fixed<const E, N>(x), half<layout, N>(y), s); }},
#define REAL_INVERSE(NAME, N, T)                                                              \
    {#NAME "_" #N "_" #T,                                                                     \
     N,                                                                                       \
     elementsOf(layout, N),                                                                   \
     N,                                                                                       \
     [](const E* x, E* y, Scale s) {                                                          \
         return Status{orvgDFTInv_##NAME##ToR_##N##_##T(x, y, static_cast<std::int32_t>(s))}; \
     },                                                                                       \
     [](const E* x, E* y, Scale s) { return irfft<N>(half<layout, N>(x), any<E>(y, N), s); }},

#define COMPARE_REAL(TITLE, LAYOUT, NAME, T)                                           \
    TEST(FixedLengths, TITLE) {                                                        \
        constexpr Layout layout = Layout::LAYOUT;                                      \
        const std::vector<Calls<E>> forward = {ORVGEN_LENGTHS(REAL_FORWARD, NAME, T)}; \
        const std::vector<Calls<E>> inverse = {ORVGEN_LENGTHS(REAL_INVERSE, NAME, T)}; \
        ASSERT_EQ(forward.size(), 63U);                                                \
        ASSERT_EQ(inverse.size(), 63U);                                                \
        compare<E>(forward, {[](const E* x, E* y, std::size_t n, Scale s) {            \
                       return rfft(any<const E>(x, n), anyHalf<layout>(y, n), s);      \
                   }});                                                                \
        compare<E>(inverse, {[](const E* x, E* y, std::size_t n, Scale s) {            \
                       return irfft(anyHalf<layout>(x, n), any<E>(y, n), s);           \
                   }});                                                                \
    }

}  // namespace orvgen::test
