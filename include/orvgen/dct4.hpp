// SPDX-License-Identifier: MIT
// The DCT-IV of powers of two, through a plan that is an object.
//
//     orvgen::Dct4<float> plan(Length{512});
//     if (!plan) ...                              // plan.status() says why
//     orvgen::Status s = plan.run(in, out);       // any number of times
#ifndef ORVGEN_DCT4_HPP
#define ORVGEN_DCT4_HPP

#include <bit>
#include <cstddef>
#include <cstdint>
#include <orvgen/arrays.hpp>
#include <orvgen/values.hpp>
#include <span>
#include <utility>

namespace orvgen {
namespace detail {

template <class T>
struct Dct4Functions;
#define ORVGEN_HPP_DCT4(NAME, T)                                                  \
    template <>                                                                   \
    struct Dct4Functions<Orv##T> {                                                \
        using Spec = Orv##NAME##Spec_##T;                                         \
        static constexpr std::int32_t maxLength = ORVGEN_##NAME##_MAX_LENGTH_##T; \
        static constexpr auto getSize = &orvg##NAME##GetSize_##T;                 \
        static constexpr auto init = &orvg##NAME##Init_##T;                       \
        static constexpr auto initAlloc = &orvg##NAME##InitAlloc_##T;             \
        static constexpr auto free = &orvg##NAME##Free_##T;                       \
        static constexpr auto run = &orvg##NAME##_##T;                            \
    };
ORVGEN_DCT4_FAMILIES(ORVGEN_HPP_DCT4)
#undef ORVGEN_HPP_DCT4

}  // namespace detail

// A plan of y[k] = sum_j x[j] cos(pi/N (j + 1/2)(k + 1/2)). Move-only. It is made for powers of two
// from 2 to maxLength and for no other length, also where the library would build a plan that a run
// means nothing for. A run may write scratch memory inside the plan, so that it is not const: one
// run at a time, or a plan for each thread.
template <detail::RealElement T>
class Dct4 {
    using Functions = detail::Dct4Functions<T>;

  public:
    using Spec = typename Functions::Spec;
    static constexpr Length maxLength{Functions::maxLength};

    // No plan: status() and all runs are errNullPtr.
    Dct4() noexcept = default;

    // A plan in memory of its own. status() is errSize for a length that is not supported,
    // errNullPtr where no memory is left.
    explicit Dct4(Length n) : state(Status::errSize) {
        if (!supports(n)) return;
        state = Status{Functions::initAlloc(&plan, n.value)};
        finish(n, plan);
    }

    // A plan in memory of the caller's, at any alignment, which must outlive this object. status()
    // is errExtent where there are fewer than bytes(n).
    Dct4(Length n, std::span<std::byte> memory) : state(Status::errSize) {
        if (!supports(n)) return;
        state = Status::errExtent;
        if (memory.size() < bytes(n)) return;
        state =
            Status{Functions::init(&plan, n.value, reinterpret_cast<std::uint8_t*>(memory.data()))};
        finish(n, nullptr);
    }

    Dct4(Dct4&& other) noexcept { swap(other); }
    Dct4& operator=(Dct4&& other) noexcept {
        Dct4 taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~Dct4() {
        if (owned) static_cast<void>(Functions::free(owned));
    }

    static constexpr bool supports(Length n) noexcept {
        return n.value >= 2 && n.value <= maxLength.value &&
               std::has_single_bit(static_cast<std::uint32_t>(n.value));
    }
    // What a plan takes; 0 for a length that is not supported.
    static std::size_t bytes(Length n) {
        std::int32_t size = 0;
        if (!supports(n) || Functions::getSize(n.value, &size) != orvOk) return 0;
        return static_cast<std::size_t>(size);
    }

    Status status() const noexcept { return state; }
    explicit operator bool() const noexcept { return state == Status::ok; }
    Length length() const noexcept { return points; }
    // For the functions of orvgen.h and orvgen_batch.h; null where there is no plan.
    Spec* get() noexcept { return plan; }

    // Arrays of length() elements each. In place where they are equal.
    template <class In, detail::RealsFrom<In, T> Out>
    Status run(In&& in, Out&& out) {
        const std::span x(in);
        const std::span y(out);
        if (!plan) return state;
        const auto n = static_cast<std::size_t>(points.value);
        if (x.size() != n || y.size() != n) return Status::errExtent;
        return Status{Functions::run(x.data(), y.data(), plan)};
    }

  private:
    Spec* plan = nullptr;
    Spec* owned = nullptr;
    Length points;
    Status state = Status::errNullPtr;

    void finish(Length n, Spec* toFree) noexcept {
        if (state != Status::ok) {
            plan = nullptr;
            return;
        }
        owned = toFree;
        points = n;
    }
    void swap(Dct4& other) noexcept {
        std::swap(plan, other.plan);
        std::swap(owned, other.owned);
        std::swap(points, other.points);
        std::swap(state, other.state);
    }
};

}  // namespace orvgen

#endif
