// SPDX-License-Identifier: MIT
// What the functions of the batch library refuse and in which order; counts of 0; targets; DCT-IV
// plans.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <type_traits>

#include "batch/families.h"
#include "support/dct4_functions.h"

namespace orvgen::test::batch {
namespace {

constexpr std::int32_t badFlags[] = {0, 3, 5, 9, 16, -1};

std::vector<std::int32_t> outOfRange(const std::vector<int>& numbers) {
    const int first = numbers.front(), last = numbers.back();
    return {first - 1,
            -1,
            -last,
            last + 1,
            1 << 16,
            std::numeric_limits<std::int32_t>::max(),
            std::numeric_limits<std::int32_t>::min()};
}

// Room for the largest transform, which a refused call leaves as it is.
template <class R>
struct Room {
    std::array<R, 1 << 14> src[2], dst[2];

    Room() {
        for (int p = 0; p < 2; ++p) {
            src[p].fill(1);
            dst[p].fill(-7);
        }
    }
    bool isUntouched() const {
        for (const auto& plane : dst)
            for (const R x : plane)
                if (x != -7) return false;
        return true;
    }
    Place<const R> from(std::ptrdiff_t n) const { return {{src[0].data(), src[1].data()}, 1, n}; }
    Place<R> to(std::ptrdiff_t n) { return {{dst[0].data(), dst[1].data()}, 1, n}; }
};

template <class R>
struct BatchContract : testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(BatchContract, Reals);

TYPED_TEST(BatchContract, LengthsComeFirst) {
    const auto room = std::make_unique<Room<TypeParam>>();
    for (const auto& family : families<TypeParam>()) {
        for (const std::int32_t number : outOfRange(family.numbers)) {
            SCOPED_TRACE(family.name + " of " + std::to_string(number));
            // The longer DCT-IV has plans (below).
            if (!family.scaled && number >= 64 &&
                std::has_single_bit(static_cast<unsigned>(number)))
                continue;
            for (const std::int32_t flag : {std::int32_t{orvScaleNone}, 3})
                for (const std::size_t count : {0U, 1U, 64U, 100U}) {
                    EXPECT_EQ(family.batch({}, {}, number, count, flag), orvErrSize);
                    EXPECT_EQ(family.batch(room->from(1), room->to(1), number, count, flag),
                              orvErrSize);
                }
        }
    }
    EXPECT_TRUE(room->isUntouched());
}

TYPED_TEST(BatchContract, PointersComeBeforeTheFlag) {
    const auto room = std::make_unique<Room<TypeParam>>();
    for (const auto& family : families<TypeParam>()) {
        for (const int number : family.numbers) {
            SCOPED_TRACE(family.name + " of " + std::to_string(number));
            // Side by side, and apart.
            for (const std::ptrdiff_t distance : {1, 100}) {
                for (const std::int32_t flag : {std::int32_t{orvScaleNone}, 3})
                    for (const bool isSrc : {true, false})
                        for (int p = 0; p < family.src.planes; ++p) {
                            auto src = room->from(distance);
                            auto dst = room->to(distance);
                            if (isSrc)
                                src.plane[p] = nullptr;
                            else
                                dst.plane[p] = nullptr;
                            // A few may be left to the single functions, whole blocks to the
                            // kernels.
                            for (const std::size_t count : {1U, 64U, 100U})
                                EXPECT_EQ(family.batch(src, dst, number, count, flag),
                                          orvErrNullPtr);
                        }
                if (!family.scaled) continue;
                for (const std::int32_t flag : badFlags)
                    for (const std::size_t count : {1U, 64U, 100U})
                        EXPECT_EQ(family.batch(room->from(distance), room->to(distance), number,
                                               count, flag),
                                  orvErrFlag);
            }
        }
    }
    EXPECT_TRUE(room->isUntouched());
}

TYPED_TEST(BatchContract, CountsOfZeroDoNotLookAtPointers) {
    for (const auto& family : families<TypeParam>()) {
        for (const int number : family.numbers) {
            SCOPED_TRACE(family.name + " of " + std::to_string(number));
            for (const std::int32_t flag :
                 {orvScaleNone, orvScaleFwdByN, orvScaleInvByN, orvScaleBySqrtN})
                EXPECT_EQ(family.batch({}, {}, number, 0, flag), orvOk);
            if (!family.scaled) continue;
            for (const std::int32_t flag : badFlags)
                EXPECT_EQ(family.batch({}, {}, number, 0, flag), orvErrFlag);
        }
    }
}

TEST(Targets, AreThoseOfTheProcessor) {
    const std::uint32_t targets = orvgBatchTargets();
    EXPECT_TRUE(targets & orvTargetSSE2);
    EXPECT_EQ(targets & ~7U, 0U);
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2");
    const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") &&
                        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
    // A target may be left out of the library, but none may be in it that the processor lacks.
    if (!avx2) {
        EXPECT_FALSE(targets & orvTargetAVX2);
    }
    if (!avx512) {
        EXPECT_FALSE(targets & orvTargetAVX512);
    }
    EXPECT_EQ((targets & orvTargetAVX2) != 0, avx2 && ORVGEN_BATCH_HAS_AVX2);
    EXPECT_EQ((targets & orvTargetAVX512) != 0, avx512 && ORVGEN_BATCH_HAS_AVX512);
    std::string run;
    for (const std::uint32_t t : runnableTargets()) run += std::string(" ") + nameOf(t);
    std::printf("targets run on this machine:%s\n", run.c_str());
}

TEST(Targets, CanBeChosenOneAtATime) {
    for (std::uint32_t target = 1; target < 64; ++target) {
        const bool can = std::has_single_bit(target) && (orvgBatchTargets() & target) != 0;
        EXPECT_EQ(orvgBatchUse(target), can ? orvOk : orvErrFlag) << target;
    }
    EXPECT_EQ(orvgBatchUse(0x80000000U), orvErrFlag);
    EXPECT_EQ(orvgBatchUse(~0U), orvErrFlag);
    EXPECT_EQ(orvgBatchUse(0), orvOk);
}

TEST(StatusText, TellsStatusesApart) {
    std::set<std::string> texts;
    for (const OrvStatus status : std::initializer_list<OrvStatus>{
             orvOk, orvErrPlan, orvErrSize, orvErrNullPtr, orvErrFlag, 1, -1, -100}) {
        const char* text = orvgBatchStatusText(status);
        ASSERT_NE(text, nullptr) << status;
        texts.insert(text);
    }
    // The five, and one for all that is no status.
    EXPECT_EQ(texts.size(), 6U);
    EXPECT_EQ(texts.count(""), 0U);
}

// DCT-IV of 64 points and more: through a plan.
template <class R>
constexpr auto batchOf = [] {
    if constexpr (std::is_same_v<R, float>)
        return orvgBatchDCT4_32f;
    else
        return orvgBatchDCT4_64f;
}();

template <class R>
struct Plan {
    explicit Plan(std::int32_t n) {
        std::int32_t size = 0;
        EXPECT_EQ(Dct4Functions<R>::getSize(n, &size), orvOk);
        block.resize(static_cast<std::size_t>(size));
        EXPECT_EQ(Dct4Functions<R>::init(&spec, n, block.data()), orvOk);
    }
    std::vector<std::uint8_t> block;
    typename Dct4Functions<R>::Spec* spec = nullptr;
};

template <class R>
struct Plans : testing::Test {};
TYPED_TEST_SUITE(Plans, Reals);

TYPED_TEST(Plans, GiveTheBitsOfSingleRuns) {
    using R = TypeParam;
    std::mt19937 random(7);
    std::uniform_real_distribution<R> uniform(-1, 1);
    for (const std::int32_t n : {64, 256, 1024, 4096}) {
        Plan<R> plan(n);
        constexpr std::size_t count = 5;
        const auto size = static_cast<std::size_t>(n);
        const std::ptrdiff_t gap = n + 3;
        std::vector<R> x(count * (size + 3)), y(x.size(), -7), expected(x.size(), -7);
        for (R& value : x) value = uniform(random);
        for (std::size_t t = 0; t < count; ++t)
            ASSERT_EQ(
                Dct4Functions<R>::run(&x[t * (size + 3)], &expected[t * (size + 3)], plan.spec),
                orvOk);
        ASSERT_EQ(batchOf<R>(x.data(), 1, gap, y.data(), 1, gap, n, plan.spec, count), orvOk);
        EXPECT_EQ(std::memcmp(y.data(), expected.data(), y.size() * sizeof(R)), 0) << n;
        // Backwards, from the last transform.
        std::fill(y.begin(), y.end(), R{-7});
        const std::size_t last = (count - 1) * (size + 3);
        ASSERT_EQ(batchOf<R>(&x[last], 1, -gap, &y[last], 1, -gap, n, plan.spec, count), orvOk);
        EXPECT_EQ(std::memcmp(y.data(), expected.data(), y.size() * sizeof(R)), 0) << n;
    }
}

TYPED_TEST(Plans, ShortLengthsDoNotLookAtThem) {
    using R = TypeParam;
    std::array<R, 32> x = {1}, y = {}, z = {};
    Plan<R> other(64);
    for (const std::int32_t n : {2, 4, 8, 16, 32}) {
        EXPECT_EQ(batchOf<R>(x.data(), 1, 0, y.data(), 1, 0, n, nullptr, 1), orvOk);
        EXPECT_EQ(batchOf<R>(x.data(), 1, 0, z.data(), 1, 0, n, other.spec, 1), orvOk);
        EXPECT_EQ(y, z) << n;
        EXPECT_NE(y[0], 0) << n;
    }
}

TYPED_TEST(Plans, RefuseWhatTheyCannotRun) {
    using R = TypeParam;
    std::array<R, 128> x = {}, y;
    y.fill(-7);
    const std::array<R, 128> untouched = y;
    Plan<R> plan(64), other(128);
    const auto run = [&](const R* src, std::ptrdiff_t srcStride, R* dst, std::ptrdiff_t dstStride,
                         std::int32_t n, auto* spec, std::size_t count) {
        return batchOf<R>(src, srcStride, 64, dst, dstStride, 64, n, spec, count);
    };
    for (const std::int32_t n : {0, 1, 3, 33, 63, 65, 96, 129, -64, 2 * Dct4Functions<R>::longest,
                                 std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(run(x.data(), 1, y.data(), 1, n, plan.spec, 1), orvErrSize) << n;
        EXPECT_EQ(run(nullptr, 1, nullptr, 1, n, plan.spec, 0), orvErrSize) << n;
    }
    EXPECT_EQ(run(x.data(), 1, y.data(), 1, 64, other.spec, 1), orvErrSize);
    EXPECT_EQ(run(x.data(), 1, y.data(), 1, 128, plan.spec, 1), orvErrSize);
    EXPECT_EQ(run(x.data(), 2, y.data(), 1, 64, plan.spec, 1), orvErrSize);
    EXPECT_EQ(run(x.data(), 1, y.data(), -1, 64, plan.spec, 1), orvErrSize);
    EXPECT_EQ(run(nullptr, 1, y.data(), 1, 64, plan.spec, 1), orvErrNullPtr);
    EXPECT_EQ(run(x.data(), 1, nullptr, 1, 64, plan.spec, 1), orvErrNullPtr);
    EXPECT_EQ(run(x.data(), 1, y.data(), 1, 64, decltype(plan.spec){}, 1), orvErrNullPtr);
    EXPECT_EQ(run(nullptr, 1, nullptr, 1, 64, plan.spec, 0), orvOk);
    EXPECT_EQ(y, untouched);
    EXPECT_EQ(run(x.data(), 1, y.data(), 1, 64, plan.spec, 1), orvOk);
}

}  // namespace
}  // namespace orvgen::test::batch
