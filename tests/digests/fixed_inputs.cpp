// SPDX-License-Identifier: MIT
#include "digests/fixed_inputs.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace orvgen::test {
namespace {

// Neither the distributions nor the engines of the standard library: their values are not promised.
template <class Real>
class Source {
    using Limits = std::numeric_limits<Real>;

  public:
    Source(InputKind kind, int number)
        : state(static_cast<std::uint64_t>(kind) * 1000 + static_cast<unsigned>(number)) {}

    // splitmix64 (Steele, Lea, Flood 2014).
    std::uint64_t word() {
        std::uint64_t z = state += 0x9e3779b97f4a7c15U;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
        return z ^ (z >> 31);
    }
    int below(int n) { return static_cast<int>((word() >> 32) % static_cast<unsigned>(n)); }
    Real sign() { return below(2) ? Real{-1} : Real{1}; }
    // All bits of the fraction in use, so that sums round; from -1 to 1.
    Real ordinary() {
        const std::uint64_t fraction = word() >> (64 - Limits::digits);
        return sign() * std::ldexp(static_cast<Real>(fraction), -Limits::digits);
    }
    // From 1/2 to 1, times a power of two.
    Real withExponent(int first, int last) {
        const std::uint64_t top = std::uint64_t{1} << (Limits::digits - 1);
        const auto fraction = static_cast<Real>(top | (word() >> (65 - Limits::digits)));
        return sign() * std::ldexp(fraction, first + below(last - first + 1) - Limits::digits);
    }
    Real denormal() {
        const std::uint64_t fraction = word() >> (65 - Limits::digits);
        return sign() * static_cast<Real>(fraction) * Limits::denorm_min();
    }

  private:
    std::uint64_t state;
};

}  // namespace

int inputCount(InputKind kind) { return kind == InputKind::NotFinite ? 16 : 6; }

template <class Real>
std::vector<Real> fixedInput(InputKind kind, int number, std::size_t count) {
    using Limits = std::numeric_limits<Real>;
    Source<Real> source(kind, number);
    const auto element = [&](std::size_t i) -> Real {
        switch (kind) {
            case InputKind::Normal:
                return source.ordinary();
            case InputKind::Wide:
                // Sums in which few bits meet, and the whole range of the type.
                return number < 3 ? source.withExponent(-30, 30)
                                  : source.withExponent(Limits::min_exponent, Limits::max_exponent);
            case InputKind::Denormal:
                if (number < 2) return source.denormal();
                // Results that become denormal, and denormal ones among others.
                if (number < 4) return source.ordinary() * (4 * Limits::min());
                return source.below(4) ? source.ordinary() : source.denormal();
            case InputKind::Zeros:
                if (number < 2) return number ? Real{-0.0} : Real{0};
                if (number < 4) return source.sign() * 0;
                return source.sign() * static_cast<Real>(source.below(2));
            case InputKind::NotFinite: {
                // One infinity, one NaN at sixteen places; at last everything of both.
                if (number < 12) {
                    const Real special = number % 2 ? Limits::quiet_NaN() : Limits::infinity();
                    const std::size_t at = count * static_cast<std::size_t>(number) / 12;
                    const Real value = source.ordinary();
                    return i == at ? std::copysign(special, value) : value;
                }
                const int choice = source.below(4 << (number - 12));
                if (choice == 0) return source.sign() * Limits::infinity();
                if (choice == 1) return source.sign() * Limits::max();
                return choice == 2 && number % 2 ? Limits::quiet_NaN() : source.ordinary();
            }
        }
        return 0;
    };
    std::vector<Real> values(count);
    for (std::size_t i = 0; i < count; ++i) values[i] = element(i);
    return values;
}

template std::vector<float> fixedInput<float>(InputKind, int, std::size_t);
template std::vector<double> fixedInput<double>(InputKind, int, std::size_t);

}  // namespace orvgen::test
