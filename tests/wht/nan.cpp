// SPDX-License-Identifier: MIT
// Which NaN comes out: of two that meet, that of the first operand, a[p]; made quiet, payload and
// sign kept. So the bits of a result are fixed for all data, and the same for all entry forms.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "memory.h"
#include "reference.h"
#include "wht/functions.h"

namespace {

using namespace orvgen::test;

template <class T>
using BitsOf = std::conditional_t<isSingle<T>, std::uint32_t, std::uint64_t>;

// A number that knows how the processor's operations treat NaN, whatever the compiler makes of a +
// b.
template <class T>
struct Careful {
    T value{};

    friend Careful operator+(Careful a, Careful b) {
        return join(a, b, [](T x, T y) { return x + y; });
    }
    friend Careful operator-(Careful a, Careful b) {
        return join(a, b, [](T x, T y) { return x - y; });
    }
    friend Careful operator*(Careful a, Careful b) {
        return join(a, b, [](T x, T y) { return x * y; });
    }

  private:
    template <class F>
    static Careful join(Careful a, Careful b, F f) {
        if (std::isnan(a.value)) return a.quiet();
        if (std::isnan(b.value)) return b.quiet();
        const T result = f(a.value, b.value);
        // inf - inf: the processor's own NaN has the sign bit set.
        if (std::isnan(result)) return {-std::numeric_limits<T>::quiet_NaN()};
        return {result};
    }
    Careful quiet() const {
        constexpr BitsOf<T> bit = BitsOf<T>{1} << (std::numeric_limits<T>::digits - 2);
        return {std::bit_cast<T>(static_cast<BitsOf<T>>(std::bit_cast<BitsOf<T>>(value) | bit))};
    }
};

// Ordinary numbers, and about one special value in `oneIn`.
template <class T>
std::vector<Careful<T>> inputWith(std::size_t n, unsigned oneIn, unsigned seed) {
    using Limits = std::numeric_limits<T>;
    std::mt19937_64 engine(seed);
    std::uniform_real_distribution<T> uniform(-1, 1);
    std::vector<Careful<T>> x(n);
    for (Careful<T>& v : x) {
        v.value = uniform(engine);
        if (engine() % oneIn != 0) continue;
        switch (engine() % 4) {
            case 0:
                v.value = engine() % 2 ? Limits::infinity() : -Limits::infinity();
                break;
            case 1:
                v.value = engine() % 2 ? Limits::max() : -Limits::max();
                break;
            default: {
                // Any NaN: quiet or signalling, either sign, any payload.
                const auto exponent = std::bit_cast<BitsOf<T>>(Limits::infinity());
                const auto payload =
                    static_cast<BitsOf<T>>(engine() & ((BitsOf<T>{1} << (Limits::digits - 1)) - 1));
                const auto sign = static_cast<BitsOf<T>>(engine() % 2) << (8 * sizeof(T) - 1);
                v.value = std::bit_cast<T>(
                    static_cast<BitsOf<T>>(exponent | sign | (payload ? payload : 1)));
            }
        }
    }
    return x;
}

template <class T>
struct NotANumber : testing::Test {};
using Reals = testing::Types<Orv32f, Orv64f>;
TYPED_TEST_SUITE(NotANumber, Reals);

TYPED_TEST(NotANumber, FirstOperandsComesOut) {
    using T = TypeParam;
    for (const auto& f : orderFunctions<T>()) {
        const std::size_t n = f.points();
        const AlignedArray<std::uint8_t> buffer(f.bufferBytes());
        std::size_t nans = 0, numbers = 0;
        for (const unsigned oneIn :
             {1U, 2U, static_cast<unsigned>(n), 4 * static_cast<unsigned>(n)})
            for (unsigned seed = 1; seed <= 12; ++seed) {
                const std::vector<Careful<T>> x = inputWith<T>(n, oneIn, seed);
                std::vector<Careful<T>> expected(n);
                referenceTransform(x.data(), expected.data(), f.order, Careful<T>{T{1}});
                for (const Careful<T>& v : expected) ++(std::isnan(v.value) ? nans : numbers);
                for (const std::size_t displacement : {std::size_t{0}, sizeof(T)}) {
                    const AlignedArray<T> src(n, displacement), dst(n, displacement);
                    std::memcpy(src.data(), x.data(), n * sizeof(T));
                    ASSERT_EQ(f.kernel(src.data(), dst.data(), orvScaleNone, buffer.data()), orvOk);
                    for (std::size_t i = 0; i < n; ++i)
                        ASSERT_TRUE(sameBytes(&dst[i], &expected[i].value, 1))
                            << f.name << ", one in " << oneIn << ", seed " << seed << ", element "
                            << i << ": " << std::hex << std::bit_cast<BitsOf<T>>(dst[i]) << " for "
                            << std::bit_cast<BitsOf<T>>(expected[i].value);
                }
            }
        EXPECT_GT(nans, 0U) << f.name;
        EXPECT_GT(numbers, 0U) << f.name;
    }
}

}  // namespace
