// SPDX-License-Identifier: MIT
// A family's calls in C++ beside the function in C that they stand for, byte for byte.
#pragma once

#include <algorithm>
#include <span>
#include <string>

#include "cpp/typed.h"

namespace orvgen::test {

// A call of one number, with the arguments of the C function.
template <class E>
using Call = Status (*)(const E* src, E* dst, Scale scale);
// The same with the number at run time.
template <class E>
using CallAny = Status (*)(const E* src, E* dst, std::size_t n, Scale scale);

template <class E>
struct Calls {
    const char* name;
    std::size_t n, srcCount, dstCount;  // points, elements
    Call<E> original, typed;
};

// The typed call, and those that are the same for all numbers, give the bytes of the original, from
// one array to another and in place.
template <class E>
void compare(const std::vector<Calls<E>>& list, const std::vector<CallAny<E>>& others) {
    for (const Calls<E>& calls : list) {
        // One more than there are, which some kernels read.
        const std::vector<E> in = samples<E>(calls.srcCount + 1, 1);
        for (const Scale scale : allScales) {
            std::vector<E> wanted = poison<E>(calls.dstCount);
            ASSERT_EQ(calls.original(in.data(), wanted.data(), scale), Status::ok) << calls.name;
            for (std::size_t i = 0; i <= others.size(); ++i) {
                SCOPED_TRACE(std::string(calls.name) + ", call " + std::to_string(i) + ", scale " +
                             std::to_string(static_cast<std::int32_t>(scale)));
                const auto run = [&](const E* src, E* dst) {
                    return i == 0 ? calls.typed(src, dst, scale)
                                  : others[i - 1](src, dst, calls.n, scale);
                };
                std::vector<E> out = poison<E>(calls.dstCount);
                EXPECT_EQ(run(in.data(), out.data()), Status::ok);
                EXPECT_TRUE(sameBytes(out, wanted));
                std::vector<E> both = poison<E>(std::max(calls.srcCount, calls.dstCount));
                std::memcpy(both.data(), in.data(), calls.srcCount * sizeof(E));
                EXPECT_EQ(run(both.data(), both.data()), Status::ok);
                both.resize(calls.dstCount);
                EXPECT_TRUE(sameBytes(both, wanted)) << "in place";
            }
        }
    }
}

// Arrays of E or of the same numbers in another type, of fixed and of dynamic extent.
template <class To, std::size_t N, class E>
auto fixed(E* at) {
    return std::span<To, N>(reinterpret_cast<To*>(at), N);
}
template <class To, class E>
auto any(E* at, std::size_t n) {
    return std::span<To>(reinterpret_cast<To*>(at), n);
}

}  // namespace orvgen::test
