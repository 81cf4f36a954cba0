// SPDX-License-Identifier: MIT
// Which arrays the transforms take, and in which extents.
#ifndef ORVGEN_ARRAYS_HPP
#define ORVGEN_ARRAYS_HPP

#include <orvgen.h>

#include <complex>
#include <concepts>
#include <cstddef>
#include <span>
#include <type_traits>

namespace orvgen::detail {

// The element of the C interface for one of the caller's. std::complex<T> may be read as an array
// of two T, which is how OrvTfc lies in memory.
template <class E>
struct ElementOf {};
template <>
struct ElementOf<float> {
    using Type = Orv32f;
};
template <>
struct ElementOf<double> {
    using Type = Orv64f;
};
template <>
struct ElementOf<Orv32fc> {
    using Type = Orv32fc;
};
template <>
struct ElementOf<Orv64fc> {
    using Type = Orv64fc;
};
template <>
struct ElementOf<std::complex<float>> {
    using Type = Orv32fc;
};
template <>
struct ElementOf<std::complex<double>> {
    using Type = Orv64fc;
};
template <class E>
using Element = typename ElementOf<std::remove_cv_t<E>>::Type;

static_assert(sizeof(std::complex<float>) == sizeof(Orv32fc) &&
              sizeof(std::complex<double>) == sizeof(Orv64fc));

template <class E>
concept RealElement = std::same_as<E, Orv32f> || std::same_as<E, Orv64f>;
template <class E>
concept ComplexElement = std::same_as<E, Orv32fc> || std::same_as<E, Orv64fc>;

template <class T>
concept RealOrConst = RealElement<std::remove_const_t<T>>;
// A view of U may become one of T.
template <class U, class T>
concept ReadAs = std::same_as<U, T> || std::same_as<const U, T>;

// Where the elements of an array are, seen as those of the C interface.
template <class E>
auto* elements(E* first) noexcept {
    using C = std::conditional_t<std::is_const_v<E>, const Element<E>, Element<E>>;
    return reinterpret_cast<C*>(first);
}

// An array is what a span can be made of: a source as it is read, a destination as it is handed
// over, so that it is no array that is about to be destroyed.
template <class A>
using SpanOf = decltype(std::span(std::declval<const std::remove_reference_t<A>&>()));
template <class A>
using ArrayElement = Element<typename SpanOf<A>::element_type>;
template <class A>
inline constexpr std::size_t extentOf = SpanOf<A>::extent;
template <class A>
using WrittenSpan = decltype(std::span(std::declval<A>()));

template <class A>
concept Source = requires {
    typename ArrayElement<A>;
};
template <class A>
concept Destination = Source<A> && !std::is_const_v<typename WrittenSpan<A>::element_type>;
// Two arrays of the same elements.
template <class In, class Out>
concept Alike = Source<In> && Destination<Out> && std::same_as<ArrayElement<In>, ArrayElement<Out>>;
template <class In, class Out>
concept RealArrays = Alike<In, Out> && RealElement<ArrayElement<Out>>;
template <class In, class Out>
concept ComplexArrays = Alike<In, Out> && ComplexElement<ArrayElement<Out>>;

// The same, said of a destination for a source.
template <class Out, class In>
concept RealFrom = RealArrays<In, Out>;
template <class Out, class In>
concept ComplexFrom = ComplexArrays<In, Out>;

template <class Out, class In, class T>
concept RealsFrom = RealArrays<In, Out> && std::same_as<ArrayElement<Out>, T>;

inline constexpr std::size_t dynamic = std::dynamic_extent;

// The array has, or may have at run time, one of these extents. A length of dynamic extent is known
// only at run time.
template <class A, std::size_t N, std::size_t orElse = N>
concept Holds = N == dynamic || extentOf<A> == dynamic || extentOf<A> == N || extentOf<A> == orElse;

// The extent of the first array that has a fixed one.
template <class A, class B>
inline constexpr std::size_t commonExtent = extentOf<A> != dynamic ? extentOf<A> : extentOf<B>;

template <class E, std::size_t extent>
constexpr std::span<E> dynamicSpan(std::span<E, extent> array) noexcept {
    return array;
}

// Of an extent that the compiler knows nothing is left to be asked at run time.
template <std::size_t N, class E, std::size_t extent>
constexpr bool has(std::span<E, extent> array) noexcept {
    if constexpr (extent == N)
        return true;
    else
        return array.size() == N;
}

}  // namespace orvgen::detail

#endif
