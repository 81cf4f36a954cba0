// SPDX-License-Identifier: MIT
// The wide targets of the batch library on an evaluated processor (tests/evaluator): every kernel
// and every way into it and out of it has the bits of the single function, whether the processor at
// hand has such vectors or not.
//
// Layouts, counts, sources, flags and settings of the processor take turns; with ORVGEN_EXHAUSTIVE
// in the environment (./dev audit) each layout is tried with each count.
#include "batch/evaluated.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace orvgen::test::batch {
namespace {

bool isExhaustive() {
    static const bool is = std::getenv("ORVGEN_EXHAUSTIVE") != nullptr;
    return is;
}

// Compares with the single functions; says where it fails.
template <class R>
bool compare(EvaluatedTarget& evaluated, const Family<R>& family, int number, const Layout& layout,
             int count, unsigned turn) {
    const Data data = nth(allData, turn);
    const std::int32_t flag = nth(allFlags, turn / 2);
    const std::uint32_t control = defaultControl | nth(allRoundings, turn / 3) |
                                  (data == Data::Denormal ? nth(allDenormals, turn / 5) : 0);
    Comparison<R> comparison(family, number, layout, count, data, flag, control, turn);
    const std::string text = comparison.check(count, nth(allPlacements, turn));
    if (text.empty()) return true;
    ADD_FAILURE() << family.name << " of " << number << ", " << layout.name << ", count " << count
                  << ", flag " << flag << ", " << nameOf(data) << ", control word " << std::hex
                  << control << ": " << text << "; " << evaluated.complaint();
    return false;
}

// By the names of functions: kernels end with the target's name, all else stands in its namespace
// or is the way into it.
bool isOfTarget(std::string_view function, std::uint32_t target) {
    const bool isWidest = target == orvTargetAVX512;
    for (const char* const name : {isWidest ? "avx512" : "avx2", isWidest ? "Avx512" : "Avx2"})
        if (function.find(name) != function.npos) return true;
    return false;
}
// What takes columns of a power of two and rows that no cache holds.
bool isOfOtherTests(std::string_view function) {
    return function.find("Tiles") != function.npos || function.find("Prefetched") != function.npos;
}
class Evaluated : public testing::TestWithParam<std::uint32_t> {};

TEST_P(Evaluated, GivesTheBitsOfTheSingleFunctions) {
    EvaluatedTarget evaluated(GetParam());
    unsigned turn = 0;
    overAll(GetParam(), [&](const auto& family, int number, int lanes) {
        // Beyond, single functions do the work.
        const bool isLong = family.points(number) > 1024;
        const std::vector<int> around = {
            lanes + lanes / 2 + 2, lanes, 2 * lanes + 1, 2, lanes + 1, lanes - 1};
        const std::vector<int> counts = isLong ? std::vector{2, 3} : around;
        const int most = *std::max_element(counts.begin(), counts.end());
        const std::vector<Layout> layouts = layoutsOf(family, number, most);
        const auto size = static_cast<unsigned>(layouts.size());
        for (unsigned l = 0; l < size; ++l) {
            // Rows and columns always, and every third of the others.
            if (l >= 2 && (l + turn) % 3 != 0 && !isExhaustive()) continue;
            for (std::size_t c = 0; c < counts.size(); ++c) {
                const bool isItsTurn = c == (l < 2 ? 0 : turn / 3 % counts.size());
                if (!isItsTurn && !isExhaustive()) continue;
                if (!compare(evaluated, family, number, layouts[l], counts[c], turn + l)) return;
            }
        }
        ++turn;
    });
    // Nothing of the target has been left out.
    int functions = 0;
    for (const EvaluatedLibrary::Function& f : EvaluatedLibrary::functions()) {
        if (!isOfTarget(f.name, GetParam()) || isOfOtherTests(f.name)) continue;
        EXPECT_TRUE(evaluated.processor().hasBeenAt(f.address)) << f.name;
        ++functions;
    }
    std::printf("%d functions, %llu million instructions\n", functions,
                static_cast<unsigned long long>(evaluated.processor().executed() / 1000000));
    EXPECT_GT(functions, 1200);
}

// A power of two as stride, where pieces of the rows are copied.
TEST_P(Evaluated, TakesColumnsOfAPowerOfTwo) {
    EvaluatedTarget evaluated(GetParam());
    overAll(GetParam(), [&](const auto& family, int number, int lanes) {
        if ((number % 13 != 0 && !isExhaustive()) || family.points(number) > 64) return;
        const Layout layout = {"columns of 4096", 4096, 1, 4096, 1};
        compare(evaluated, family, number, layout, 5 * lanes + 1, 0);
    });
}

// Complex rows that no cache holds: the next ones are prefetched. (docs/batch.md)
TEST_P(Evaluated, TakesRowsThatNoCacheHolds) {
    EvaluatedTarget evaluated(GetParam());
    overAll(GetParam(), [&](const auto& family, int number, int lanes) {
        constexpr Side pairs = {.planes = 1, .width = 2, .bins = false};
        if (number != 48 || family.src != pairs || family.dst != pairs) return;
        constexpr int farBytes = 16 << 20;
        const int count = farBytes / (64 / lanes * 4 * number) + lanes + 3;
        compare(evaluated, family, number, layoutsOf(family, number, count).front(), count, 0);
    });
}

INSTANTIATE_TEST_SUITE_P(Batch, Evaluated, testing::ValuesIn(wideTargets()), nameOfParameter);

}  // namespace
}  // namespace orvgen::test::batch
