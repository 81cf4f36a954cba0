// SPDX-License-Identifier: MIT
#include "support/inputs.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>

namespace orvgen::test {
namespace {

template <class Real>
using Bits = std::conditional_t<sizeof(Real) == 4, std::uint32_t, std::uint64_t>;

template <class Real>
class Maker {
  public:
    explicit Maker(std::size_t n) : count(n), engine(static_cast<unsigned>(1000 + n)) {}

    template <class F>
    void add(const std::string& name, F element, bool ordinary = false) {
        Input<Real> input{name, std::vector<Real>(count), ordinary};
        for (std::size_t i = 0; i < count; ++i) input.values[i] = element(i);
        inputs.push_back(std::move(input));
    }

    Real uniform() { return std::uniform_real_distribution<Real>(-1, 1)(engine); }
    // A value of any exponent of the type, denormals included.
    Real wide(int spread) {
        const int e = std::uniform_int_distribution<int>(-spread, spread)(engine);
        return std::ldexp(uniform(), e);
    }
    Real denormal() {
        const Bits<Real> fraction =
            static_cast<Bits<Real>>(engine()) * static_cast<Bits<Real>>(2654435761U) &
            ((Bits<Real>{1} << (std::numeric_limits<Real>::digits - 1)) - 1);
        return std::copysign(std::bit_cast<Real>(fraction), uniform());
    }
    // A NaN that can be told from others: quiet or not, of either sign, with a payload.
    Real nan(std::size_t i) {
        constexpr int digits = std::numeric_limits<Real>::digits;
        const Bits<Real> quiet = std::bit_cast<Bits<Real>>(std::numeric_limits<Real>::quiet_NaN());
        Bits<Real> bits = quiet | static_cast<Bits<Real>>(0x100 + i);
        if (i % 3 == 1) bits &= ~(Bits<Real>{1} << (digits - 2));
        if (i % 2 == 1) bits |= Bits<Real>{1} << (8 * sizeof(Real) - 1);
        return std::bit_cast<Real>(bits);
    }
    std::size_t pick(std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(engine);
    }

    std::size_t count;
    std::mt19937 engine;
    std::vector<Input<Real>> inputs;
};

template <class Real>
void addOrdinary(Maker<Real>& make) {
    for (int i = 0; i < 6; ++i) {
        make.add(
            "random " + std::to_string(i), [&](std::size_t) { return make.uniform(); }, true);
    }
    make.add("small integers",
             [&](std::size_t) { return static_cast<Real>(static_cast<int>(make.pick(19)) - 9); });
    for (int i = 0; i < 2; ++i) {
        make.add("wide range " + std::to_string(i), [&](std::size_t) { return make.wide(30); });
    }
    make.add("widest range",
             [&](std::size_t) { return make.wide(std::numeric_limits<Real>::max_exponent - 4); });
    make.add("ones", [](std::size_t) { return Real{1}; });
    make.add("alternating ones", [](std::size_t i) { return i % 2 ? Real{-1} : Real{1}; });
}

template <class Real>
void addZeros(Maker<Real>& make) {
    const Real zero = 0;
    make.add("zeros", [&](std::size_t) { return zero; });
    make.add("negative zeros", [&](std::size_t) { return -zero; });
    for (int i = 0; i < 3; ++i) {
        make.add("zeros of random sign " + std::to_string(i),
                 [&](std::size_t) { return make.pick(2) ? -zero : zero; });
    }
    make.add("zeros and ones", [&](std::size_t) {
        const Real list[] = {zero, -zero, 1, -1};
        return list[make.pick(4)];
    });
}

template <class Real>
void addDenormals(Maker<Real>& make) {
    using Limits = std::numeric_limits<Real>;
    make.add("denormals", [&](std::size_t) { return make.denormal(); });
    make.add("denormals and smallest normals", [&](std::size_t) {
        return make.pick(2) ? make.denormal() : Limits::min() * (1 + make.uniform() / 2);
    });
    make.add("denormals among ordinary",
             [&](std::size_t) { return make.pick(4) ? make.uniform() : make.denormal(); });
    make.add("products that become denormal",
             [&](std::size_t) { return make.uniform() * Limits::min() * 4; });
}

template <class Real>
void addLargest(Maker<Real>& make) {
    using Limits = std::numeric_limits<Real>;
    const Real inf = Limits::infinity();
    make.add("largest", [&](std::size_t) { return make.pick(2) ? Limits::max() : -Limits::max(); });
    make.add("overflowing", [&](std::size_t) { return make.uniform() * Limits::max(); });
    make.add("infinities", [&](std::size_t) { return inf; });
    make.add("infinities of random sign", [&](std::size_t) { return make.pick(2) ? inf : -inf; });
    make.add("not a number", [&](std::size_t i) { return make.nan(i); });
}

// Mostly ordinary data, so that not everything ends as NaN.
template <class Real>
void addMixed(Maker<Real>& make) {
    using Limits = std::numeric_limits<Real>;
    const Real inf = Limits::infinity(), zero = 0;
    for (int i = 0; i < 4; ++i) {
        make.add("mixed " + std::to_string(i), [&](std::size_t j) {
            const Real list[] = {make.uniform(),  zero,        -zero, inf,          -inf,
                                 make.denormal(), make.nan(j), 1,     Limits::max()};
            const std::size_t k = make.pick(std::size_t{12} << (3 * i));
            return k < std::size(list) ? list[k] : make.uniform();
        });
    }
}

// One special element at `at`, among zeros or ordinary ones.
template <class Real>
void addSpecialAt(Maker<Real>& make, std::size_t at) {
    const Real inf = std::numeric_limits<Real>::infinity();
    const std::string where = " at " + std::to_string(at);
    const auto among = [&](const std::string& name, Real special, auto other) {
        make.add(name + where, [&](std::size_t i) { return i == at ? special : other(); });
    };
    among("impulse", 1, [] { return Real{0}; });
    among("infinity", at % 2 ? -inf : inf, [&] { return make.uniform(); });
    among("one not a number", make.nan(at), [&] { return make.uniform(); });
}

}  // namespace

template <class Real>
std::vector<Input<Real>> makeInputs(std::size_t count, std::size_t impulses) {
    Maker<Real> make(count);
    addOrdinary(make);
    addZeros(make);
    addDenormals(make);
    addLargest(make);
    addMixed(make);
    const std::size_t step = impulses == 0 || count <= impulses ? 1 : (count - 1) / impulses + 1;
    for (std::size_t at = 0; at < count; at += step) addSpecialAt(make, at);
    return std::move(make.inputs);
}

template std::vector<Input<float>> makeInputs<float>(std::size_t, std::size_t);
template std::vector<Input<double>> makeInputs<double>(std::size_t, std::size_t);

}  // namespace orvgen::test
