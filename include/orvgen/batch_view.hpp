// SPDX-License-Identifier: MIT
// Arrays of transforms as views: where element j of transform t stands in a caller's array.
#ifndef ORVGEN_BATCH_VIEW_HPP
#define ORVGEN_BATCH_VIEW_HPP

#include <cassert>
#include <cstddef>
#include <numeric>
#include <orvgen/arrays.hpp>
#include <orvgen/values.hpp>
#include <span>
#include <type_traits>

namespace orvgen::batch {

// Element j of transform t stands at index origin + j * stride + t * distance. Of a half spectrum
// in the layout CCS the elements are bins.
struct Shape {
    std::size_t elements = 0;  // of a transform
    std::size_t count = 0;     // transforms
    std::ptrdiff_t stride = 1;
    std::ptrdiff_t distance = 0;
    std::ptrdiff_t origin = 0;

    friend constexpr bool operator==(const Shape&, const Shape&) noexcept = default;
};

namespace detail {

// The highest or lowest index that (n - 1) steps away from `from` lead to; false where it does not
// fit.
constexpr bool reach(std::size_t n, std::ptrdiff_t step, std::ptrdiff_t& low,
                     std::ptrdiff_t& high) noexcept {
    std::ptrdiff_t way = 0;
    if (__builtin_mul_overflow(n - 1, step, &way)) return false;
    return !__builtin_add_overflow(way < 0 ? low : high, way, way < 0 ? &low : &high);
}

// Every element lies in an array of that size.
constexpr bool inside(const Shape& shape, std::size_t size) noexcept {
    if (shape.count == 0 || shape.elements == 0) return true;
    std::ptrdiff_t low = shape.origin, high = shape.origin;
    return reach(shape.elements, shape.stride, low, high) &&
           reach(shape.count, shape.distance, low, high) && low >= 0 &&
           static_cast<std::size_t>(high) < size;
}

constexpr std::size_t magnitude(std::ptrdiff_t value) noexcept {
    const auto bits = static_cast<std::size_t>(value);
    return value < 0 ? 0 - bits : bits;
}

// No two elements are the same. If j * stride + t * distance is the same for two elements, they are
// a multiple of distance / g apart in j and of stride / g in t, g being the greatest common
// divisor.
constexpr bool distinct(const Shape& shape) noexcept {
    const std::size_t n = shape.elements, count = shape.count;
    const std::size_t s = magnitude(shape.stride), d = magnitude(shape.distance);
    if (n == 0 || count == 0 || (n == 1 && count == 1)) return true;
    if (s != 0 && d / s >= n) return true;  // rows that do not overlap
    if (d != 0 && s / d >= count) return true;
    const std::size_t g = std::gcd(s, d);
    return g != 0 && (d / g >= n || s / g >= count);
}

// What a span can be made of as it is handed over: no array that is gone once the view is made.
template <class A>
concept Lasting = requires {
    typename orvgen::detail::WrittenSpan<A>;
};

}  // namespace detail

// The transforms of an array that it does not own; E is any element that the single transforms
// take, const where they are only read. A view whose shape leaves the array, or whose elements are
// to be written and are not all distinct, is not valid(): transforms refuse it with
// Status::errExtent, and its elements may not be asked for.
template <class E>
class View {
  public:
    using Element = orvgen::detail::Element<E>;

    constexpr View(std::span<E> array, const Shape& shape) noexcept
        : memory(array),
          form(shape),
          sound(detail::inside(shape, array.size()) &&
                (std::is_const_v<E> || detail::distinct(shape))) {}

    // As one that is only read.
    constexpr View(const View<std::remove_const_t<E>>& other) noexcept requires(std::is_const_v<E>)
        : memory(other.whole()), form(other.shape()), sound(other.valid()) {}

    constexpr bool valid() const noexcept { return sound; }
    constexpr const Shape& shape() const noexcept { return form; }
    constexpr std::size_t elements() const noexcept { return form.elements; }
    constexpr std::size_t count() const noexcept { return form.count; }
    constexpr std::span<E> whole() const noexcept { return memory; }
    // Element 0 of transform 0, where there is one.
    constexpr E* data() const noexcept {
        return memory.data() + (form.count > 0 ? form.origin : 0);
    }

    // Element j of transform t.
    constexpr E& operator()(std::size_t t, std::size_t j) const noexcept {
        assert(sound && t < form.count && j < form.elements);
        return memory[static_cast<std::size_t>(form.origin +
                                               static_cast<std::ptrdiff_t>(j) * form.stride +
                                               static_cast<std::ptrdiff_t>(t) * form.distance)];
    }

  private:
    std::span<E> memory;
    Shape form;
    bool sound;
};

// The rows of a matrix of `width` columns that fills the array; a rest that is no whole row is left
// alone.
template <detail::Lasting A>
constexpr auto rows(A&& array, std::size_t width) noexcept {
    const std::span all(array);
    return View<typename decltype(all)::element_type>(
        all, Shape{.elements = width,
                   .count = width == 0 ? 0 : all.size() / width,
                   .stride = 1,
                   .distance = static_cast<std::ptrdiff_t>(width)});
}

// The columns of such a matrix.
template <detail::Lasting A>
constexpr auto columns(A&& array, std::size_t width) noexcept {
    const std::span all(array);
    return View<typename decltype(all)::element_type>(
        all, Shape{.elements = width == 0 ? 0 : all.size() / width,
                   .count = width,
                   .stride = static_cast<std::ptrdiff_t>(width),
                   .distance = 1});
}

// Frames of `length` elements that begin `hop` elements apart, as many as the array has.
template <detail::Lasting A>
constexpr auto frames(A&& array, std::size_t length, std::size_t hop) noexcept {
    const std::span all(array);
    return View<typename decltype(all)::element_type>(
        all, Shape{.elements = length,
                   .count = all.size() < length || hop == 0 ? 0 : (all.size() - length) / hop + 1,
                   .stride = 1,
                   .distance = static_cast<std::ptrdiff_t>(hop)});
}

}  // namespace orvgen::batch

#endif
