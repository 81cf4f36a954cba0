// SPDX-License-Identifier: MIT
// The exported functions: their steps, what they refuse, what they leave alone.
#include <cfenv>
#include <cmath>
#include <limits>
#include <thread>

#include "dct4/plan.h"
#include "dct4/quad.h"

namespace orvgen::test::dct4 {
namespace {

std::vector<std::int32_t> powers(std::int32_t last) {
    std::vector<std::int32_t> lengths;
    for (std::int32_t N = 2; N <= last; N *= 2) lengths.push_back(N);
    return lengths;
}

TEST(Dct4Init, RefusesNullBeforeItLooksAtTheLength) {
    Block block(4096);
    const std::vector<std::uint8_t> before = block.copy();
    for (const std::int32_t N : {2, 64, 0, -1, 100, 2147483647}) {
        Spec* spec = reinterpret_cast<Spec*>(&block);
        EXPECT_EQ(Exported::init(&spec, N, nullptr), orvErrNullPtr);
        EXPECT_EQ(spec, reinterpret_cast<Spec*>(&block));
        EXPECT_EQ(Exported::init(nullptr, N, block.data()), orvErrNullPtr);
        EXPECT_EQ(Exported::init(nullptr, N, nullptr), orvErrNullPtr);
    }
    EXPECT_TRUE(sameBits(before, block.copy()));
}

TEST(Dct4Init, PutsTheTopNodeOnTheNextBoundary) {
    for (std::size_t remainder = 0; remainder < 32; ++remainder) {
        for (const std::int32_t N : {2, 32, 64, 4096}) {
            Plan plan(N, remainder);
            const std::uint8_t* top = reinterpret_cast<const std::uint8_t*>(plan.spec);
            EXPECT_EQ(top - plan.block.data(), static_cast<std::ptrdiff_t>(64 - remainder));
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(top) % 32, 0U);
        }
    }
    Plan plan(64, 8);
    EXPECT_EQ(reinterpret_cast<const std::uint8_t*>(plan.spec) - plan.block.data(), 56);
}

// Wherever the block lies, nothing behind the reported size is written, by building or by running.
TEST(Dct4Init, StaysInsideTheReportedSize) {
    for (const std::size_t remainder : {0U, 1U, 8U, 16U, 31U}) {
        for (const std::int32_t N : powers(131072)) {
            Plan plan(N, remainder);
            plan(randomVector(N, 1));
            const std::size_t size = Plan::reportedSize(N);
            for (std::size_t i = 0; i < Plan::guard; ++i) {
                ASSERT_EQ(plan.block.data()[size + i], Block::fill) << N;
            }
        }
    }
}

// Every length that the size query refuses, Init refuses too, and leaves the plan pointer alone.
TEST(Dct4Init, AcceptsTheLengthsThatHaveASize) {
    Block block(std::size_t{16} << 20);
    int refusals = 0;
    for (std::int32_t N = -5; N <= 70000; ++N) {
        std::int32_t size = 0;
        const OrvStatus sized = Exported::getSize(N, &size);
        Spec* const before = reinterpret_cast<Spec*>(&block);
        Spec* spec = before;
        const OrvStatus status = Exported::init(&spec, N, block.data());
        EXPECT_EQ(status, sized) << N;
        EXPECT_EQ(spec == before, status != orvOk) << N;
        refusals += status == orvErrSize;
    }
    EXPECT_GT(refusals, 69000);
    for (const std::int32_t N : {-2147483647 - 1, -64, 2147483647}) {
        Spec* spec = nullptr;
        EXPECT_EQ(Exported::init(&spec, N, block.data()), orvErrSize);
        EXPECT_EQ(spec, nullptr);
    }
}

TEST(Dct4Run, RefusesNullPointers) {
    Plan plan(4);
    std::vector<Real> x = randomVector(4, 1), y(4, static_cast<Real>(-7));
    const std::vector<Real> untouched = y;
    EXPECT_EQ(Exported::run(nullptr, y.data(), plan.spec), orvErrNullPtr);
    EXPECT_EQ(Exported::run(x.data(), nullptr, plan.spec), orvErrNullPtr);
    EXPECT_EQ(Exported::run(x.data(), y.data(), nullptr), orvErrNullPtr);
    EXPECT_EQ(Exported::run(nullptr, nullptr, nullptr), orvErrNullPtr);
    EXPECT_TRUE(sameBits(y, untouched));
    // A null pointer comes before an unknown rule.
    plan.top()->rule = 9;
    EXPECT_EQ(Exported::run(nullptr, y.data(), plan.spec), orvErrNullPtr);
}

TEST(Dct4Run, RefusesUnknownRules) {
    for (const std::int32_t N : {4, 64}) {
        Plan plan(N);
        const std::vector<Real> x = randomVector(N, 1);
        std::vector<Real> y(x.size(), static_cast<Real>(-7));
        const std::vector<Real> untouched = y;
        for (const std::int32_t rule : {0, 7, -1, 100, 2147483647, -2147483647 - 1}) {
            plan.top()->rule = rule;
            EXPECT_EQ(plan.run(x.data(), y.data()), orvErrPlan) << rule;
        }
        EXPECT_TRUE(sameBits(y, untouched));
    }
}

TEST(Dct4Run, GivesTheStatusOfANodeThatRefuses) {
    Plan plan(4096);
    const std::vector<Real> x = randomVector(4096, 1);
    Env7* level = plan.levels().at(0);
    expectRefusal(plan, x, plan.env5()->rule, 8);
    expectRefusal(plan, x, plan.env4()->rule, 0);
    expectRefusal(plan, x, level->active, 0);
    expectRefusal(plan, x, Plan::child<Env8>(level->joinRole)->rule, 6);
    expectRefusal(plan, x, Plan::child<Env9>(level->innerRole)->rule, 8);
    plan(x);  // a good plan again
}

// A stage whose wrapper's flag is not 1 is left out without a word.
TEST(Dct4Run, LeavesOutAnInactiveStage) {
    for (const std::int32_t flag : {0, 2, -1}) {
        Plan plan(256);
        const std::vector<Real> x = randomVector(256, 1), other = randomVector(256, 2);
        const std::vector<Real> expected = plan(x);
        std::vector<Real> y(256, static_cast<Real>(-7));
        const std::vector<Real> untouched = y;

        plan.env2()->active = flag;
        EXPECT_EQ(plan.run(other.data(), y.data()), orvOk);
        EXPECT_TRUE(sameBits(y, untouched));
        plan.env2()->active = 1;

        // The first stage of x is still in the scratch when the next run leaves it out.
        EXPECT_TRUE(sameBits(plan(x), expected));
        plan.env3()->active = flag;
        EXPECT_EQ(plan.run(other.data(), y.data()), orvOk);
        EXPECT_TRUE(sameBits(y, expected));
    }
}

TEST(Dct4Run, MisalignedAndInPlaceGiveTheSameBits) {
    for (const std::int32_t N : powers(8192)) {
        Plan plan(N);
        const std::vector<Real> x = randomVector(N, static_cast<unsigned>(N));
        const std::vector<Real> expected = plan(x);
        const auto count = static_cast<std::size_t>(N);
        for (std::size_t from = 0; from < 4; ++from) {
            for (std::size_t to = 0; to < 4; ++to) {
                std::vector<Real> src(count + 8), dst(count + 8, static_cast<Real>(-7));
                std::copy(x.begin(), x.end(), src.begin() + static_cast<std::ptrdiff_t>(from));
                EXPECT_EQ(plan.run(src.data() + from, dst.data() + to), orvOk);
                for (std::size_t i = 0; i < dst.size(); ++i) {
                    const bool inside = i >= to && i < to + count;
                    const Real value = inside ? expected[i - to] : static_cast<Real>(-7);
                    ASSERT_EQ(bitsOf(dst[i]), bitsOf(value)) << N << " " << i;
                }
            }
            std::vector<Real> both(count + 8);
            std::copy(x.begin(), x.end(), both.begin() + static_cast<std::ptrdiff_t>(from));
            EXPECT_EQ(plan.run(both.data() + from, both.data() + from), orvOk);
            EXPECT_EQ(std::memcmp(both.data() + from, expected.data(), count * sizeof(Real)), 0)
                << N;
        }
        // Elements off their own boundary.
        std::vector<std::uint8_t> raw(count * sizeof(Real) + 8);
        std::memcpy(raw.data() + 1, x.data(), count * sizeof(Real));
        std::vector<Real> y(count);
        plan.run(reinterpret_cast<const Real*>(raw.data() + 1), y.data());
        EXPECT_TRUE(sameBits(y, expected)) << N;
    }
}

TEST(Dct4Run, DependsOnSourceAndPlanAlone) {
    for (const std::int32_t N : powers(16384)) {
        Plan plan(N), again(N, 8);
        const std::vector<Real> x = randomVector(N, 3);
        const std::vector<Real> expected = plan(x);
        plan(randomVector(N, 4));
        EXPECT_TRUE(sameBits(plan(x), expected)) << N;
        EXPECT_TRUE(sameBits(again(x), expected)) << N;
    }
}

// Bytes of the block that a run may write: the scratch of the top node and of each level.
TEST(Dct4Run, WritesNothingOfThePlanButItsScratch) {
    for (const std::int32_t N : powers(131072)) {
        Plan plan(N);
        std::vector<std::uint8_t> before = plan.block.copy();
        const std::vector<Real> x = randomVector(N, 5);
        const std::vector<Real> source = x;
        plan(x);
        std::vector<std::uint8_t> after = plan.block.copy();
        EXPECT_EQ(sameBits(before, after), N <= 32) << N;
        const auto hide = [&](const Real* scratch) {
            const auto at = reinterpret_cast<const std::uint8_t*>(scratch) - plan.block.data();
            const auto bytes = static_cast<std::ptrdiff_t>(sizeof(Real)) * N;
            std::fill(before.begin() + at, before.begin() + at + bytes, std::uint8_t{0});
            std::fill(after.begin() + at, after.begin() + at + bytes, std::uint8_t{0});
        };
        if (N > 32) hide(plan.top()->scratch);
        for (Env7* level : plan.levels()) hide(level->scratch);
        EXPECT_TRUE(sameBits(before, after)) << N;
        EXPECT_TRUE(sameBits(x, source));
    }
}

TEST(Dct4Run, SharesAShortPlanAmongThreads) {
    for (const std::int32_t N : powers(32)) {
        Plan plan(N);
        std::vector<int> wrong(4);
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < wrong.size(); ++i) {
            threads.emplace_back([&, i] {
                const std::vector<Real> x = randomVector(N, i);
                const std::vector<Real> expected = plan(x);
                for (int repeat = 0; repeat < 2000; ++repeat) {
                    std::vector<Real> y(x.size());
                    wrong[i] += plan.run(x.data(), y.data()) != orvOk || !sameBits(y, expected);
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(wrong, std::vector<int>(4)) << N;
    }
}

TEST(Dct4Run, TakesAPlanForEachThread) {
    for (const std::int32_t N : {64, 2048, 4096, 16384}) {
        Plan single(N);
        std::vector<int> wrong(4);
        std::vector<std::thread> threads;
        std::vector<std::vector<Real>> expected;
        for (unsigned i = 0; i < 4; ++i) expected.push_back(single(randomVector(N, i)));
        for (unsigned i = 0; i < wrong.size(); ++i) {
            threads.emplace_back([&, i] {
                Plan plan(N);
                const std::vector<Real> x = randomVector(N, i);
                for (int repeat = 0; repeat < 50; ++repeat) {
                    std::vector<Real> y(x.size());
                    wrong[i] += plan.run(x.data(), y.data()) != orvOk || !sameBits(y, expected[i]);
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(wrong, std::vector<int>(4)) << N;
    }
}

TEST(Dct4Run, LeavesTheRoundingModeAndUsesIt) {
    const std::vector<Real> x = randomVector(64, 6);
    Plan plan(64);
    const std::vector<Real> nearest = plan(x);
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(mode);
        const std::vector<Real> y = plan(x);
        const int after = std::fegetround();
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(after, mode);
        EXPECT_FALSE(sameBits(y, nearest));
    }
}

TEST(Dct4Run, PassesNonFiniteValuesThrough) {
    for (const std::int32_t N : powers(4096)) {
        Plan plan(N);
        std::vector<Real> x = randomVector(N, 7);
        x[x.size() / 3] = std::numeric_limits<Real>::infinity();
        const std::vector<Real> y = plan(x);
        bool reached = true;
        for (const Real value : y) reached = reached && !(std::abs(value) < 1e30);
        EXPECT_TRUE(reached) << N;
    }
}

TEST(Dct4Length2, IsTheRotation) {
    Plan plan(2);
    const std::vector<Real> y = plan({1, 0});
    EXPECT_EQ(y[0], static_cast<Real>(cosPi(1, 8)));
    EXPECT_EQ(y[1], static_cast<Real>(sinPi(1, 8)));
    EXPECT_NEAR(static_cast<double>(y[0]), 0.92387953, 0.5e-8 + 6e-8);
    EXPECT_NEAR(static_cast<double>(y[1]), 0.38268343, 0.5e-8 + 3e-8);
}

// Destruction brings the bump pointer back to where the first allocation started.
TEST(Dct4Destruction, GivesBackWhatBuildingTook) {
    for (const std::size_t remainder : {0U, 8U, 31U}) {
        std::vector<std::int32_t> lengths = powers(131072);
        for (std::int32_t power = familyBits == 32 ? 32 : 8; power <= 65536; power *= 2) {
            lengths.push_back(power + 1);
        }
        for (const std::int32_t N : lengths) {
            Plan plan(N, remainder);
            Operations<Env1>::del(plan.top());
            orvgArenaFree(plan.block.arena(), plan.top(), sizeof(Env1));
            EXPECT_EQ(plan.block.used(), 64 - remainder) << N;
        }
    }
}

// With a rule of no kind the scratch is not given back.
TEST(Dct4Destruction, SkipsTheScratchOfAnUnknownRule) {
    Plan plan(64);
    plan.top()->rule = 7;
    Operations<Env1>::del(plan.top());
    orvgArenaFree(plan.block.arena(), plan.top(), sizeof(Env1));
    EXPECT_EQ(plan.block.used(), 64 + 64 * sizeof(Real));
}

// 2^k + 1 passes the test of lengths; its data mean nothing, but the places are known.
TEST(Dct4LengthPlusOne, IsAcceptedAndRun) {
    for (std::int32_t power = familyBits == 32 ? 32 : 8; power <= 65536; power *= 2) {
        const std::int32_t N = power + 1;
        Plan plan(N);
        const std::vector<Real> x = randomVector(N + 1, 8);
        std::vector<Real> y(x.size() + 62, static_cast<Real>(-7));
        EXPECT_EQ(plan.run(x.data(), y.data()), orvOk) << N;
    }
}

TEST(Dct4LengthPlusOne, WritesTheListedPlacesAt33) {
    Plan plan(33);
    const std::vector<Real> x = randomVector(34, 9);
    std::vector<Real> y(34 + 16, static_cast<Real>(-7));
    EXPECT_EQ(plan.run(x.data(), y.data()), orvOk);
    std::vector<long> unwritten;
    for (std::size_t i = 0; i < y.size(); ++i) {
        if (y[i] == static_cast<Real>(-7)) unwritten.push_back(static_cast<long>(i));
    }
    std::vector<long> expected = table("unwritten").list("element");
    for (long i = 34; i < 50; ++i) expected.push_back(i);
    EXPECT_EQ(unwritten, expected);
}

}  // namespace
}  // namespace orvgen::test::dct4
