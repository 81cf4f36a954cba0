// SPDX-License-Identifier: MIT
// What a run touches: exactly the arrays that it is given, exactly the plan, and of a short plan
// nothing but the rule; and that the groups of a recursion level give the same bits together as one
// after the other.
#include <limits>

#include "dct4/plan.h"
#include "dct4/together.h"
#include "support/guarded.h"

namespace orvgen::test::dct4 {
namespace {

// The fault in a call that is to succeed; empty: none.
template <class Call>
std::string faultOf(Call call, const void* at) {
    return catchFault([&] { EXPECT_EQ(call(), orvOk); }, at);
}

// Arrays and block of exactly their sizes, in turn right behind and right before a page that nobody
// may touch.
TEST(Dct4Run, StaysInsideExactArrays) {
    for (std::int32_t N = 2; N <= 131072; N *= 2) {
        const std::vector<Real> x = randomVector(N, 1);
        const std::vector<Real> expected = Plan(N)(x);
        const std::size_t bytes = x.size() * sizeof(Real), size = Plan::reportedSize(N);
        GuardedMemory source(bytes), destination(bytes), memory(size);
        for (const bool atEnd : {false, true}) {
            const auto place = [&](const GuardedMemory& guarded, std::size_t used) {
                return atEnd ? guarded.end() - used : guarded.data();
            };
            auto* src = reinterpret_cast<Real*>(place(source, bytes));
            auto* dst = reinterpret_cast<Real*>(place(destination, bytes));
            std::uint8_t* block = place(memory, size);
            source.setReadOnly(false);
            std::memcpy(src, x.data(), bytes);
            source.setReadOnly(true);
            Spec* spec = nullptr;
            EXPECT_EQ(faultOf([&] { return Exported::init(&spec, N, block); }, block), "") << N;
            ASSERT_NE(spec, nullptr);
            EXPECT_EQ(faultOf([&] { return Exported::run(src, dst, spec); }, src), "") << N;
            EXPECT_EQ(std::memcmp(dst, expected.data(), bytes), 0) << N;
        }
    }
}

// A plan of which only the rule can be read, what stands before it or what stands behind the radix,
// which shares its eight bytes, being forbidden.
TEST(Dct4Run, ReadsOfAShortPlanTheRuleAlone) {
    constexpr std::size_t ruleAt = 64;
    for (std::int32_t N = 2, rule = 1; N <= 32; N *= 2, ++rule) {
        const std::vector<Real> x = randomVector(N, 2);
        const std::vector<Real> expected = Plan(N)(x);
        GuardedMemory memory(4096);
        for (std::uint8_t* at : {memory.data(), memory.end() - 2 * sizeof rule}) {
            const std::int32_t fields[] = {rule, -1};
            std::memcpy(at, fields, sizeof fields);
            auto* spec = reinterpret_cast<Spec*>(at - ruleAt);
            std::vector<Real> y(x.size());
            Real* dst = y.data();
            EXPECT_EQ(faultOf([&] { return Exported::run(x.data(), dst, spec); }, spec), "") << N;
            EXPECT_TRUE(sameBits(y, expected)) << N;
        }
    }
}

// Source and destination at any byte.
TEST(Dct4Run, TakesArraysAtAnyAddress) {
    for (std::int32_t N = 2; N <= 16384; N *= 2) {
        Plan plan(N);
        const std::vector<Real> x = randomVector(N, 3);
        const std::vector<Real> expected = plan(x);
        const std::size_t bytes = x.size() * sizeof(Real);
        for (std::size_t offset = 0; offset < 16; ++offset) {
            std::vector<std::uint8_t> source(bytes + 32), destination(bytes + 32, 0xA5);
            std::memcpy(source.data() + offset, x.data(), bytes);
            const std::size_t to = 16 - offset;
            EXPECT_EQ(plan.run(reinterpret_cast<const Real*>(source.data() + offset),
                               reinterpret_cast<Real*>(destination.data() + to)),
                      orvOk);
            EXPECT_EQ(std::memcmp(destination.data() + to, expected.data(), bytes), 0) << N;
            for (std::size_t i = 0; i < destination.size(); ++i) {
                const bool inside = i >= to && i < to + bytes;
                ASSERT_TRUE(inside || destination[i] == 0xA5) << N;
            }
        }
    }
}

TEST(Dct4Run, MayBeInPlaceAtAnyPower) {
    for (std::int32_t N = 2; N <= 131072; N *= 2) {
        Plan plan(N);
        std::vector<Real> x = randomVector(N, 4);
        const std::vector<Real> expected = plan(x);
        EXPECT_EQ(plan.run(x.data(), x.data()), orvOk);
        EXPECT_TRUE(sameBits(x, expected)) << N;
    }
}

// The first stage of a plan, and the scratch arrays of its levels.
std::vector<std::vector<Real>> arraysOf(Plan& plan) {
    const auto count = static_cast<std::size_t>(plan.top()->length);
    const auto copy = [&](const Real* start) { return std::vector<Real>(start, start + count); };
    std::vector<std::vector<Real>> arrays = {copy(plan.top()->scratch)};
    for (Env7* level : plan.levels()) arrays.push_back(copy(level->scratch));
    return arrays;
}

TEST(Dct4KernelsTogether, GiveTheBitsOfOneAfterTheOther) {
    for (const std::int32_t power : {4096, 8192, 16384, 32768, 65536, 131072, 262144}) {
        for (const std::int32_t N : {power, power + 1}) {
            std::vector<Real> x = randomVector(N + 1, 5);
            x[x.size() / 5] = std::numeric_limits<Real>::infinity();
            x[x.size() / 3] = std::numeric_limits<Real>::denorm_min();
            Plan plan(N), other(N);
            const auto clear = [&](Plan& cleared) {
                std::fill_n(cleared.top()->scratch, N, Real{0});
                for (Env7* level : cleared.levels()) std::fill_n(level->scratch, N, Real{0});
            };
            clear(plan), clear(other);
            const Env5& node = *other.env5();
            const std::int32_t r = node.r;
            EXPECT_EQ(worthTogether<Real>(r, N),
                      N * static_cast<std::int32_t>(sizeof(Real)) > 32768);
            EXPECT_EQ(Operations<Env5>::compute(plan.env5(), plan.top()->scratch, x.data()), orvOk);
            for (std::int32_t p = 0; p < r; p += lanes) {
                EXPECT_EQ(Operations<Env7>::compute(other.levels().at(0), other.top()->scratch,
                                                    x.data(), p, 2 * N - 1 - 2 * p, p),
                          orvOk);
            }
            const std::vector<std::vector<Real>> found = arraysOf(plan), expected = arraysOf(other);
            ASSERT_EQ(found.size(), expected.size());
            for (std::size_t i = 0; i < found.size(); ++i) {
                EXPECT_TRUE(sameBits(found[i], expected[i])) << N << " array " << i;
            }
        }
    }
}

TEST(Dct4KernelsTogether, HandOnTheStatusOfANodeThatRefuses) {
    Plan plan(131072);
    const std::vector<Real> x = randomVector(131072, 6);
    ASSERT_TRUE(worthTogether<Real>(plan.env5()->r, 131072));
    ASSERT_EQ(plan.levels().size(), 2U);
    for (Env7* level : plan.levels()) {
        expectRefusal(plan, x, level->active, 0);
        expectRefusal(plan, x, Plan::child<Env8>(level->joinRole)->rule, 6);
        expectRefusal(plan, x, Plan::child<Env9>(level->innerRole)->rule, 8);
    }
    plan(x);  // a good plan again
}

}  // namespace
}  // namespace orvgen::test::dct4
