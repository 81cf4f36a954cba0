// SPDX-License-Identifier: MIT
// Exceptions instead of statuses, for those who want them:
//
//     #include <orvgen/check.hpp>
//
//     orvgen::check(orvgen::fft<64>(x, y, orvgen::Scale::none));
//     auto plan = orvgen::check(orvgen::Dct4<float>(orvgen::Length{512}));
#ifndef ORVGEN_CHECK_HPP
#define ORVGEN_CHECK_HPP

#include <concepts>
#include <orvgen/values.hpp>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace orvgen {

class Error : public std::runtime_error {
  public:
    explicit Error(Status status) : std::runtime_error(statusText(status)), state(status) {}
    Status status() const noexcept { return state; }

  private:
    Status state;
};

// Throws an Error unless the status is ok.
inline void check(Status status) {
    if (status != Status::ok) throw Error(status);
}

namespace detail {

// An object that is about to be handed on, and knows whether it is sound.
template <class Object>
concept Checkable = !std::is_lvalue_reference_v<Object> && requires(const Object& object) {
    { object.status() } -> std::same_as<Status>;
};

}  // namespace detail

// The object, a plan or a buffer, if its status is ok.
template <detail::Checkable Object>
Object check(Object&& object) {
    check(object.status());
    return std::forward<Object>(object);
}

}  // namespace orvgen

#endif
