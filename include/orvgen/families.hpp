// SPDX-License-Identifier: MIT
// The lists of orvgen.h as types: which function a family has for which number.
#ifndef ORVGEN_FAMILIES_HPP
#define ORVGEN_FAMILIES_HPP

#include <orvgen.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <orvgen/half_spectrum.hpp>

namespace orvgen::detail {

// The tables serve the compiler only: nothing of them remains in a program, so that a static
// library hands over the functions that are called and no others.
#define ORVGEN_HPP_NUMBER(NAME, N, T) N,
#define ORVGEN_HPP_FUNCTION(NAME, N, T) &orvg##NAME##_##N##_##T,
#define ORVGEN_HPP_FAMILY(NAME, T, LIST)                                              \
    struct NAME##_##T {                                                               \
        using Element = Orv##T;                                                       \
        static constexpr std::int32_t numbers[] = {LIST(ORVGEN_HPP_NUMBER, NAME, T)}; \
        static constexpr decltype(&orvg##NAME##_2_##T) functions[] = {                \
            LIST(ORVGEN_HPP_FUNCTION, NAME, T)};                                      \
        static constexpr auto byNumber = &orvg##NAME##_##T;                           \
    };
ORVGEN_LENGTH_FAMILIES(ORVGEN_HPP_FAMILY)
ORVGEN_ORDER_FAMILIES(ORVGEN_HPP_FAMILY)
#undef ORVGEN_HPP_NUMBER
#undef ORVGEN_HPP_FUNCTION
#undef ORVGEN_HPP_FAMILY

// The numbers of a family follow one another.
template <class Family>
consteval bool contiguous() {
    std::int32_t next = Family::numbers[0];
    for (const std::int32_t n : Family::numbers)
        if (n != next++) return false;
    return true;
}
template <class Family>
inline constexpr std::int32_t first = Family::numbers[0];
template <class Family>
inline constexpr std::int32_t last = first<Family> +
                                     static_cast<std::int32_t>(std::size(Family::numbers)) - 1;

template <class Family>
constexpr bool exists(std::int64_t number) noexcept {
    static_assert(contiguous<Family>());
    return number >= first<Family> && number <= last<Family>;
}

// The function of a family for one length or order, found by the compiler.
template <class Family, std::int32_t number>
consteval auto functionOf() {
    static_assert(exists<Family>(number));
    return Family::functions[number - first<Family>];
}

// The families by what they transform.
template <class E>
struct Complex;
template <>
struct Complex<Orv32fc> {
    using Forward = DFTFwd_CToC_32fc;
    using Inverse = DFTInv_CToC_32fc;
};
template <>
struct Complex<Orv64fc> {
    using Forward = DFTFwd_CToC_64fc;
    using Inverse = DFTInv_CToC_64fc;
};

template <class E, Layout layout>
struct Real;
template <>
struct Real<Orv32f, Layout::ccs> {
    using Forward = DFTFwd_RToCCS_32f;
    using Inverse = DFTInv_CCSToR_32f;
};
template <>
struct Real<Orv32f, Layout::pack> {
    using Forward = DFTFwd_RToPack_32f;
    using Inverse = DFTInv_PackToR_32f;
};
template <>
struct Real<Orv32f, Layout::perm> {
    using Forward = DFTFwd_RToPerm_32f;
    using Inverse = DFTInv_PermToR_32f;
};
template <>
struct Real<Orv64f, Layout::ccs> {
    using Forward = DFTFwd_RToCCS_64f;
    using Inverse = DFTInv_CCSToR_64f;
};
template <>
struct Real<Orv64f, Layout::pack> {
    using Forward = DFTFwd_RToPack_64f;
    using Inverse = DFTInv_PackToR_64f;
};
template <>
struct Real<Orv64f, Layout::perm> {
    using Forward = DFTFwd_RToPerm_64f;
    using Inverse = DFTInv_PermToR_64f;
};

template <class E>
struct RealToReal;
template <>
struct RealToReal<Orv32f> {
    using Hartley = Hartley_32f;
    using Hadamard = WHT_32f;
};
template <>
struct RealToReal<Orv64f> {
    using Hartley = Hartley_64f;
    using Hadamard = WHT_64f;
};

}  // namespace orvgen::detail

#endif
