// SPDX-License-Identifier: MIT
// Indices of the prime-length algorithms.
#pragma once

#include <stdexcept>

namespace orvgen::flows {

inline long powerModulo(long base, long exponent, long n) {
    long result = 1;
    for (long i = 0; i < exponent; ++i) result = result * base % n;
    return result;
}

inline long inverseModulo(long a, long n) {
    for (long b = 1; b < n; ++b)
        if (a * b % n == 1) return b;
    throw std::logic_error("no inverse");
}

// The smallest generator of the group of indices 1..p-1 under multiplication modulo the prime p.
inline long smallestRoot(long p) {
    for (long g = 2; g < p; ++g) {
        long order = 1;
        for (long power = g; power != 1; power = power * g % p) {
            if (power == 0) throw std::logic_error("not a prime");
            ++order;
        }
        if (order == p - 1) return g;
    }
    throw std::logic_error("no primitive root");
}

}  // namespace orvgen::flows
