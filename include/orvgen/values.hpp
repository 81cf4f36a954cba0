// SPDX-License-Identifier: MIT
// What calls are told and what they answer: lengths, orders, scales, statuses, the version record.
#ifndef ORVGEN_VALUES_HPP
#define ORVGEN_VALUES_HPP

#include <orvgen.h>

#include <concepts>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace orvgen {

// The answer of every transform. All but errExtent are those of orvgen.h.
enum class [[nodiscard]] Status : std::int32_t{
    ok = orvOk,           errPlan = orvErrPlan, errSize = orvErrSize, errNullPtr = orvErrNullPtr,
    errFlag = orvErrFlag,
    errExtent = -32  // an array, a view or scratch memory has not the extent that was asked for
};

// A few English words, for messages.
constexpr const char* statusText(Status status) noexcept {
    switch (status) {
        case Status::ok:
            return "success";
        case Status::errPlan:
            return "the plan was not finished";
        case Status::errSize:
            return "a length, order or stride that the function does not take";
        case Status::errNullPtr:
            return "a null pointer, or no memory for a plan";
        case Status::errFlag:
            return "no scaling flag, or no target of this machine";
        case Status::errExtent:
            return "an array has not the extent that was asked for";
    }
    return "no status of this library";
}

// The scale of a transform of N points; what each means to each transform stands in orvgen.h.
enum class Scale : std::int32_t {
    fwdByN = orvScaleFwdByN,
    invByN = orvScaleInvByN,
    bySqrtN = orvScaleBySqrtN,
    none = orvScaleNone
};

namespace detail {

// An integer of the caller's as the library takes it; 0, which no function takes, where it does not
// fit.
template <std::integral I>
constexpr std::int32_t clamped(I value) noexcept {
    return std::in_range<std::int32_t>(value) ? static_cast<std::int32_t>(value) : 0;
}

template <class I>
concept Number = std::integral<I> && !std::same_as<std::remove_cv_t<I>, bool>;

}  // namespace detail

// Points of a transform, where they are known only at run time: Length{n}, n of any integer type.
struct Length {
    std::int32_t value = 0;

    constexpr Length() noexcept = default;
    template <detail::Number I>
    explicit constexpr Length(I n) noexcept : value(detail::clamped(n)) {}
    friend constexpr bool operator==(Length, Length) noexcept = default;
};

// Order of a Walsh-Hadamard transform: 2 to the power of it are its points.
struct Order {
    std::int32_t value = 0;

    constexpr Order() noexcept = default;
    template <detail::Number I>
    explicit constexpr Order(I k) noexcept : value(detail::clamped(k)) {}
    // The points of this order, 0 where no transform has it.
    constexpr std::size_t points() const noexcept {
        return value >= 1 && value <= 13 ? std::size_t{1} << value : 0;
    }
    friend constexpr bool operator==(Order, Order) noexcept = default;
};

// The library's record of the binary interface.
inline const OrvLibraryVersion& libraryVersion() { return *orvgenGetLibVersion(); }

}  // namespace orvgen

#endif
