// SPDX-License-Identifier: MIT
// Every function in every layout and count, on every target of this machine: the bits of the single
// function, its exceptions, and nothing else touched.
//
// Sources, flags and settings of the processor take turns. With ORVGEN_EXHAUSTIVE in the
// environment
// (./dev audit) each meets each.
#include <gtest/gtest.h>

#include <cstdlib>

#include "batch/layouts.h"

namespace orvgen::test::batch {
namespace {

constexpr std::int32_t flags[] = {orvScaleNone, orvScaleFwdByN, orvScaleInvByN, orvScaleBySqrtN};

bool isExhaustive() {
    static const bool is = std::getenv("ORVGEN_EXHAUSTIVE") != nullptr;
    return is;
}

// Whether the `index`-th of so many is to be tried now: the one whose turn it is, or all.
bool isItsTurn(unsigned index, unsigned turn, unsigned size) {
    return isExhaustive() || index == turn % size;
}

// Compares with the single function; says where it fails, and no more than once a case.
template <class R>
bool compare(const Family<R>& family, int number, const Layout& layout,
             const std::vector<int>& counts, Data data, std::int32_t flag,
             std::uint32_t control = defaultControl) {
    Comparison<R> comparison(family, number, layout, counts.back(), data, flag, control,
                             static_cast<unsigned>(number));
    for (const int count : counts)
        for (unsigned p = 0; p < std::size(allPlacements); ++p) {
            if (!isItsTurn(p, static_cast<unsigned>(count), std::size(allPlacements))) continue;
            const std::string text = comparison.check(count, allPlacements[p]);
            if (text.empty()) continue;
            ADD_FAILURE() << family.name << " of " << number << ", " << layout.name << ", count "
                          << count << ", placement " << p << ", flag " << flag << ", "
                          << nameOf(data) << ", control word " << std::hex << control << ": "
                          << text;
            return false;
        }
    return true;
}

// Every family of a target.
class Targets : public testing::TestWithParam<std::uint32_t> {
  protected:
    void SetUp() override { ASSERT_EQ(orvgBatchUse(GetParam()), orvOk); }
    void TearDown() override { ASSERT_EQ(orvgBatchUse(0), orvOk); }

    // check(family, number, lanes)
    template <class Check>
    void overAll(const Check& check) {
        overType<float>(check);
        overType<double>(check);
    }

  private:
    template <class R, class Check>
    void overType(const Check& check) {
        for (const Family<R>& family : families<R>())
            for (const int number : family.numbers) check(family, number, lanesOf<R>(GetParam()));
    }
};

TEST_P(Targets, GiveTheBitsOfTheSingleFunctionsInEveryLayoutAndCount) {
    unsigned turn = 0;
    overAll([&](const auto& family, int number, int lanes) {
        const bool areAllCounts = isExhaustive() || family.points(number) <= 64;
        const std::vector<int> counts = areAllCounts ? allCounts(lanes) : someCounts(lanes);
        for (const Layout& layout : layoutsOf(family, number, counts.back())) {
            // Sources and flags take turns, in steps that have no common divisor.
            for (unsigned d = 0; d < std::size(allData); ++d)
                for (unsigned f = 0; f < std::size(flags); ++f)
                    if (isItsTurn(d, turn, std::size(allData)) &&
                        isItsTurn(f, turn, std::size(flags)) &&
                        !compare(family, number, layout, counts, allData[d], flags[f]))
                        return;
            ++turn;
        }
    });
}

TEST_P(Targets, TakeEveryFlagAndSourceInRows) {
    overAll([&](const auto& family, int number, int lanes) {
        const Layout rows = layoutsOf(family, number, 1).front();
        for (const std::int32_t flag : flags)
            for (const Data data : allData)
                if (!compare(family, number, rows, {lanes + lanes / 2 + 2}, data, flag)) return;
    });
}

TEST_P(Targets, TakeLongBatches) {
    overAll([&](const auto& family, int number, int lanes) {
        if (number % 16 != 0 && number != 13 && !isExhaustive()) return;
        const std::vector<int> counts = {40 * lanes + 3};
        if (family.points(number) > 1024) return;
        for (const Layout& layout : layoutsOf(family, number, counts.back()))
            if (!compare(family, number, layout, counts, Data::Ordinary, orvScaleNone)) return;
    });
}

// A power of two as stride, where the elements of a column crowd into few sets of the cache.
TEST_P(Targets, TakeColumnsOfAPowerOfTwo) {
    overAll([&](const auto& family, int number, int lanes) {
        if ((number % 13 != 0 && !isExhaustive()) || family.points(number) > 64) return;
        const Layout layout = {"columns of 4096", 4096, 1, 4096, 1};
        compare(family, number, layout, {5 * lanes + 1}, Data::Ordinary, orvScaleNone);
    });
}

TEST_P(Targets, KeepTheRoundingModeAndTheTreatmentOfDenormals) {
    unsigned turn = 0;
    overAll([&](const auto& family, int number, int lanes) {
        const std::vector<int> counts = {lanes + lanes / 2 + 2};
        const std::vector<Layout> layouts = layoutsOf(family, number, counts.back());
        const auto layoutCount = static_cast<unsigned>(layouts.size());
        for (const std::uint32_t rounding : {0x0000U, 0x2000U, 0x4000U, 0x6000U})
            for (const std::uint32_t denormals : {0x0000U, 0x0040U, 0x8000U, 0x8040U}) {
                const std::uint32_t control = defaultControl | rounding | denormals;
                // Denormals two times of three where they are treated otherwise than usual.
                const unsigned source = denormals != 0 && turn % 3 != 0 ? 2 : turn;
                for (unsigned l = 0; l < layoutCount; ++l)
                    for (unsigned d = 0; d < std::size(allData); ++d)
                        if (isItsTurn(l, turn, layoutCount) &&
                            isItsTurn(d, source, std::size(allData)) &&
                            !compare(family, number, layouts[l], counts, allData[d],
                                     flags[turn % 4], control))
                            return;
                ++turn;
            }
    });
}

std::string nameOfParameter(const testing::TestParamInfo<std::uint32_t>& info) {
    std::string name = nameOf(info.param);
    std::erase(name, '-');
    return name;
}
INSTANTIATE_TEST_SUITE_P(Batch, Targets, testing::ValuesIn(runnableTargets()), nameOfParameter);

}  // namespace
}  // namespace orvgen::test::batch
