// SPDX-License-Identifier: MIT
// The tests of a wide target on an evaluated processor.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "batch/evaluated_library.h"
#include "batch/layouts.h"

namespace orvgen::test::batch {

inline constexpr std::int32_t allFlags[] = {orvScaleNone, orvScaleFwdByN, orvScaleInvByN,
                                            orvScaleBySqrtN};
inline constexpr std::uint32_t allRoundings[] = {0x0000, 0x2000, 0x4000, 0x6000};
// What becomes of denormal numbers, in the control word.
inline constexpr std::uint32_t allDenormals[] = {0x0000, 0x8040, 0x0040, 0x8000};

// The values of a list in turn.
template <class T, std::size_t size>
T nth(const T (&list)[size], unsigned turn) {
    return list[turn % size];
}

// A processor that has the target and uses it. While it works the calls of the batch functions are
// its own.
class EvaluatedTarget {
  public:
    explicit EvaluatedTarget(std::uint32_t target) : library_(featuresFor(target)) {
        EXPECT_EQ(library_.use(target), orvOk) << complaint();
        work();
    }
    ~EvaluatedTarget() { rest(); }
    EvaluatedTarget(const EvaluatedTarget&) = delete;
    EvaluatedTarget& operator=(const EvaluatedTarget&) = delete;

    void work() {
        batchRunner = [this](const void* function, std::span<const std::uint64_t> arguments) {
            const auto status = static_cast<OrvStatus>(library_.call(function, arguments));
            return complaint().empty() ? status : kComplaint;
        };
    }
    void rest() { batchRunner = nullptr; }
    EvaluatedLibrary& library() { return library_; }
    evaluator::Processor& processor() { return library_.processor(); }
    const std::string& complaint() { return processor().complaint(); }

  private:
    // No status of a function.
    static constexpr OrvStatus kComplaint = -1000;
    EvaluatedLibrary library_;
};

// check(family, number, lanes) for every function of the target.
template <class Check>
void overAll(std::uint32_t target, const Check& check) {
    const auto over = [&]<class R>(const std::vector<Family<R>>& list) {
        for (const Family<R>& family : list)
            for (const int number : family.numbers) check(family, number, lanesOf<R>(target));
    };
    over(families<float>());
    over(families<double>());
}

// The wide targets that the library is built with.
inline std::vector<std::uint32_t> wideTargets() {
    std::vector<std::uint32_t> targets;
    if (ORVGEN_BATCH_HAS_AVX2) targets.push_back(orvTargetAVX2);
    if (ORVGEN_BATCH_HAS_AVX512) targets.push_back(orvTargetAVX512);
    return targets;
}
// Of the names of its kernels.
inline std::string suffixOf(std::uint32_t target) {
    return target == orvTargetAVX2 ? "_avx2" : "_avx512";
}
inline std::string nameOfParameter(const testing::TestParamInfo<std::uint32_t>& info) {
    return suffixOf(info.param) == "_avx2" ? "AVX2" : "AVX512";
}

}  // namespace orvgen::test::batch
