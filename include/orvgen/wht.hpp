// SPDX-License-Identifier: MIT
// The Walsh-Hadamard transform, orders 1 to 13, and its scratch memory.
//
//     wht<Order{7}>(in, out, scale)              orders up to 7 need no memory
//     WhtBuffer<float> buffer(Order{10});        others an object that owns it
//     wht<Order{10}>(in, out, scale, buffer)     order as a constant
//     wht(in, out, scale, buffer)                its points are the arrays' extent
//     wht(in, out, Order{k}, scale, buffer)      order at run time
//
// Nothing is allocated by a call. One buffer serves any number of calls of its order and those
// below, one at a time.
#ifndef ORVGEN_WHT_HPP
#define ORVGEN_WHT_HPP

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <orvgen/arrays.hpp>
#include <orvgen/families.hpp>
#include <orvgen/values.hpp>
#include <span>
#include <utility>

namespace orvgen {
namespace detail {

inline constexpr std::size_t bufferAlignment = 16;
// Up to here the functions need no buffer.
inline constexpr std::int32_t lastOrderWithoutBuffer = 7;

template <RealElement T>
OrvStatus bufferSize(std::int32_t order, std::int32_t* size) {
    if constexpr (std::same_as<T, Orv32f>)
        return orvgWHTGetBufferSize_32f(order, size);
    else
        return orvgWHTGetBufferSize_64f(order, size);
}

}  // namespace detail

// Scratch memory for transforms of T up to an order. Move-only.
template <detail::RealElement T>
class WhtBuffer {
  public:
    // Of no bytes, for orders up to 7.
    WhtBuffer() noexcept = default;

    // Memory of its own. status() is errSize for an order that does not exist, errNullPtr where no
    // memory is left.
    explicit WhtBuffer(Order most) {
        std::size_t bytes = 0;
        if (!sizeFor(most, bytes) || bytes == 0) return;
        memory = static_cast<std::uint8_t*>(std::aligned_alloc(detail::bufferAlignment, bytes));
        owned = memory;
        finish(most);
    }

    // Memory of the caller's, on a 16-byte boundary, which must outlive this object. status() is
    // errExtent where there are fewer than bytes(most), or off the boundary.
    WhtBuffer(Order most, std::span<std::byte> given) {
        std::size_t bytes = 0;
        if (!sizeFor(most, bytes)) return;
        if (given.size() < bytes ||
            reinterpret_cast<std::uintptr_t>(given.data()) % detail::bufferAlignment != 0) {
            state = Status::errExtent;
            largest = Order{};
            return;
        }
        if (bytes == 0) return;
        memory = reinterpret_cast<std::uint8_t*>(given.data());
        finish(most);
    }

    WhtBuffer(WhtBuffer&& other) noexcept { swap(other); }
    WhtBuffer& operator=(WhtBuffer&& other) noexcept {
        WhtBuffer taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~WhtBuffer() { std::free(owned); }

    // What the memory of an order takes; 0 for those that need none or do not exist.
    static std::size_t bytes(Order order) {
        std::int32_t size = 0;
        return detail::bufferSize<T>(order.value, &size) == orvOk ? static_cast<std::size_t>(size)
                                                                  : 0;
    }

    Status status() const noexcept { return state; }
    explicit operator bool() const noexcept { return state == Status::ok; }
    // Whether transforms of this order can be handed this buffer.
    bool serves(Order order) const noexcept { return order.value <= largest.value; }
    std::uint8_t* data() const noexcept { return memory; }

  private:
    std::uint8_t* memory = nullptr;
    std::uint8_t* owned = nullptr;
    Order largest{detail::lastOrderWithoutBuffer};
    Status state = Status::ok;

    bool sizeFor(Order most, std::size_t& bytes) {
        std::int32_t size = 0;
        state = Status{detail::bufferSize<T>(most.value, &size)};
        if (state != Status::ok) largest = Order{};
        bytes = static_cast<std::size_t>(size);
        return state == Status::ok;
    }
    void finish(Order most) noexcept {
        largest = memory ? most : Order{};
        if (!memory) state = Status::errNullPtr;
    }
    void swap(WhtBuffer& other) noexcept {
        std::swap(memory, other.memory);
        std::swap(owned, other.owned);
        std::swap(largest, other.largest);
        std::swap(state, other.state);
    }
};

namespace detail {

template <class A>
using HadamardOf = typename RealToReal<ArrayElement<A>>::Hadamard;

constexpr std::int32_t orderOf(std::size_t points) noexcept {
    return std::has_single_bit(points) ? static_cast<std::int32_t>(std::bit_width(points)) - 1 : 0;
}

// Destinations for a source In of an order, without and with a buffer, and of the order that both
// arrays have by themselves.
template <class Out, class In, std::size_t N>
concept HadamardBy = detail::RealArrays<In, Out> && detail::Holds<In, N> && detail::Holds<Out, N> &&
    (N == dynamic || exists<HadamardOf<Out>>(orderOf(N)));
template <class Out, class In, Order order>
concept BufferlessBy = detail::HadamardBy<Out, In, order.points()> &&
    (order.value <= lastOrderWithoutBuffer);
template <class Out, class In>
concept HadamardOwn = HadamardBy<Out, In, commonExtent<Out, In>>;
template <class A>
using BufferOf = WhtBuffer<ArrayElement<A>>;

template <std::int32_t order, class A, class In, class Out>
Status runHadamard(const In& in, const Out& out, Scale scale, std::uint8_t* buffer) {
    constexpr std::size_t N = std::size_t{1} << order;
    if (!has<N>(in) || !has<N>(out)) return Status::errExtent;
    return Status{functionOf<HadamardOf<A>, order>()(elements(in.data()), elements(out.data()),
                                                     static_cast<std::int32_t>(scale), buffer)};
}

// An order that needs memory is refused where the buffer has none for it: the function would
// allocate, and could not say that it failed.
template <class T>
Status refusal(const WhtBuffer<T>& buffer) {
    return buffer.status() == Status::ok ? Status::errExtent : buffer.status();
}

}  // namespace detail

// y[i] = s sum_j (-1)^popcount(i & j) x[j]
template <Order order, class In, detail::BufferlessBy<In, order> Out>
Status wht(In&& in, Out&& out, Scale scale) {
    return detail::runHadamard<order.value, Out>(std::span(in), std::span(out), scale, nullptr);
}
template <Order order, class In, detail::HadamardBy<In, order.points()> Out>
Status wht(In&& in, Out&& out, Scale scale, const detail::BufferOf<Out>& buffer) {
    if constexpr (order.value > detail::lastOrderWithoutBuffer)
        if (!buffer.serves(order)) return detail::refusal(buffer);
    return detail::runHadamard<order.value, Out>(std::span(in), std::span(out), scale,
                                                 buffer.data());
}
template <class In, detail::RealFrom<In> Out>
Status wht(In&& in, Out&& out, Order order, Scale scale, const detail::BufferOf<Out>& buffer) {
    using Family = detail::HadamardOf<Out>;
    const std::span x(in);
    const std::span y(out);
    if (!detail::exists<Family>(order.value)) return Status::errSize;
    if (x.size() != order.points() || y.size() != order.points()) return Status::errExtent;
    if (order.value > detail::lastOrderWithoutBuffer && !buffer.serves(order))
        return detail::refusal(buffer);
    return Status{Family::byNumber(detail::elements(x.data()), detail::elements(y.data()),
                                   order.value, static_cast<std::int32_t>(scale), buffer.data())};
}
template <class In, detail::HadamardOwn<In> Out>
Status wht(In&& in, Out&& out, Scale scale, const detail::BufferOf<Out>& buffer) {
    constexpr std::size_t N = detail::commonExtent<Out, In>;
    if constexpr (N != detail::dynamic)
        return orvgen::wht<Order{detail::orderOf(N)}>(in, out, scale, buffer);
    else
        return orvgen::wht(in, out, Order{detail::orderOf(std::span(out).size())}, scale, buffer);
}

}  // namespace orvgen

#endif
