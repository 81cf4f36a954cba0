// SPDX-License-Identifier: MIT
// The floating-point environment is the caller's: in every rounding mode, with denormals treated
// or flushed as zero or not, and whatever exceptions are unmasked, a function gives the same bits,
// leaves the control word and the flags already up as they are, raises nothing that the data do not
// raise, and does not see what registers and stack held before.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "orvgen.h"
#include "stress/subject.h"

namespace orvgen::test {
namespace {

constexpr std::uint32_t denormalModes[] = {0, mxcsr::denormalsAreZero, mxcsr::flushToZero,
                                           mxcsr::denormalsAreZero | mxcsr::flushToZero};

class Environment : public testing::TestWithParam<std::size_t> {
  protected:
    const Subject& s = subjects()[GetParam()];
    Block src{s.readBytes()}, dst{s.dstBytes}, buffer{s.bufferBytes};
    unsigned calls = 0;

    using Bytes = std::vector<std::uint8_t>;

    // One call of the kernel or its twin; the bytes that came out.
    Bytes run(bool twin, std::int32_t flag, std::uint32_t control, std::uint32_t mayRaise) {
        const Pattern& pattern = patterns[++calls % std::size(patterns)];
        std::memset(dst.data(), static_cast<int>(calls % 251 + 1), s.dstBytes);
        std::memcpy(buffer.data(), &pattern.low, std::min<std::size_t>(8, s.bufferBytes));
        const Outcome o = callCatching(
            twin ? s.twin : s.kernel,
            s.arguments(src.data(), dst.data(), flag, s.bufferBytes ? buffer.data() : nullptr),
            control, pattern);
        const auto where = [&] {
            return s.name + (twin ? ", twin" : "") + ", flag " + std::to_string(flag) +
                   ", control word " + std::to_string(control) + ", registers full of " +
                   pattern.name;
        };
        if (!o.fault.empty()) {
            ADD_FAILURE() << where() << ": " << o.fault;
            return {};
        }
        EXPECT_EQ(o.status, orvOk) << where();
        EXPECT_EQ(checkControl(control, o.control), "") << where();
        EXPECT_EQ(o.control & mxcsr::flags & ~control & ~mayRaise, 0U) << where();
        return {dst.data(), dst.data() + s.dstBytes};
    }

    template <class Real>
    void forReals(std::uint8_t* at, std::size_t bytes, auto&& change) {
        for (std::size_t i = 0; i < bytes; i += sizeof(Real)) {
            Real x;
            std::memcpy(&x, at + i, sizeof x);
            x = change(x);
            std::memcpy(at + i, &x, sizeof x);
        }
    }
};

TEST_P(Environment, OrdinaryDataRaiseInexactAlone) {
    fillOrdinary(src.data(), s.readBytes(), s.single, 1);
    for (const std::uint32_t rounding : mxcsr::rounding) {
        for (const std::uint32_t denormals : denormalModes) {
            const std::uint32_t mode = rounding | denormals;
            for (const bool twin : {false, true}) {
                if (twin && !s.twin) continue;
                const std::int32_t flag = 1 << (calls % 4);
                const Bytes masked = run(twin, flag, mode | mxcsr::masks, mxcsr::inexact);
                // Everything unmasked that ordinary data do not raise; flags that are up stay up.
                const Bytes open = run(twin, flag, mode | mxcsr::inexactMask, mxcsr::inexact);
                const Bytes up = run(twin, flag, mode | mxcsr::masks | mxcsr::flags, 0);
                EXPECT_TRUE(masked == open && masked == up) << s.name << ", mode " << mode;
                if (HasFailure()) return;
            }
        }
    }
}

TEST_P(Environment, ZerosRaiseNothing) {
    std::memset(src.data(), 0, s.readBytes());
    for (const std::uint32_t rounding : mxcsr::rounding) {
        for (const bool twin : {false, true}) {
            if (twin && !s.twin) continue;
            const Bytes zeros = run(twin, 1 << (calls % 4), rounding, 0);
            for (std::size_t i = 0; i < zeros.size(); ++i) {
                // Minus zero, as a sum has it where it is rounded down.
                const bool sign = i % s.realBytes() == s.realBytes() - 1;
                ASSERT_TRUE(zeros[i] == 0 || (sign && zeros[i] == 0x80)) << s.name << " at " << i;
            }
            if (HasFailure()) return;
        }
    }
}

// Denormal data count as zeros of their sign, and no denormal result comes out.
TEST_P(Environment, DenormalModesAreObeyed) {
    const auto check = [&]<class Real>(Real) {
        using Limits = std::numeric_limits<Real>;
        for (const bool twin : {false, true}) {
            if (twin && !s.twin) continue;
            for (const std::int32_t flag : {1, 2, 4, 8}) {
                const std::uint32_t treat = mxcsr::masks | mxcsr::denormalsAreZero;
                fillOrdinary(src.data(), s.readBytes(), s.single, 2);
                forReals<Real>(src.data(), s.readBytes(),
                               [](Real x) { return x * Limits::min() / 2; });
                const Bytes denormals = run(twin, flag, treat, 0);
                forReals<Real>(src.data(), s.readBytes(),
                               [](Real x) { return std::copysign(Real{0}, x); });
                EXPECT_EQ(denormals, run(twin, flag, treat, 0)) << s.name;

                fillOrdinary(src.data(), s.readBytes(), s.single, 3);
                forReals<Real>(src.data(), s.readBytes(), [](Real x) { return x * Limits::min(); });
                // A few normal numbers, so that there is something to flush.
                run(twin, flag, mxcsr::masks | mxcsr::flushToZero, mxcsr::flags);
                forReals<Real>(dst.data(), s.dstBytes, [&](Real x) {
                    EXPECT_NE(std::fpclassify(x), FP_SUBNORMAL) << s.name;
                    return x;
                });
                if (HasFailure()) return;
            }
        }
    };
    s.single ? check(Orv32f{}) : check(Orv64f{});
}

INSTANTIATE_TEST_SUITE_P(Kernels, Environment, testing::Range(std::size_t{0}, subjects().size()),
                         [](const auto& p) { return subjects()[p.param].name; });

}  // namespace
}  // namespace orvgen::test
