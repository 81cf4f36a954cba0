// SPDX-License-Identifier: MIT
// The evaluated processor itself: where the processor at hand has a target, both leave the same
// bytes and raise the same exceptions, to the payloads of NaNs; and the library finds out what a
// processor has.
#include <gtest/gtest.h>

#include <cstring>

#include "batch/evaluated.h"

namespace orvgen::test::batch {
namespace {

// Any numbers: a comparison of two processors needs no transform that means something. Now and then
// a NaN with a payload of its own, quiet or not.
template <class R>
std::vector<R> drawAny(Data data, std::size_t count, unsigned seed) {
    std::vector<R> x = draw<R>(data, count, seed);
    if (data != Data::Special) return x;
    using Word = std::conditional_t<sizeof(R) == 4, std::uint32_t, std::uint64_t>;
    std::mt19937_64 random(seed);
    for (R& value : x) {
        if (!std::isnan(value)) continue;
        const R infinity = std::numeric_limits<R>::infinity();
        const auto payload = static_cast<Word>(random() >> (sizeof(R) == 4 ? 41 : 12));
        const Word word = std::bit_cast<Word>(infinity) | payload | 1;
        std::memcpy(&value, &word, sizeof value);
    }
    return x;
}

// One call with its arrays, which can be repeated.
template <class R>
class Repeated {
  public:
    Repeated(const Family<R>& family, int number, const Layout& layout, int count, unsigned turn)
        : family_(family), number_(number), layout_(layout), count_(count), turn_(turn) {
        const int points = family.points(number);
        srcExtent_ = Extent::of(layout.srcStride, layout.srcDistance, family.src, points, count);
        dstExtent_ = Extent::of(layout.dstStride, layout.dstDistance, family.dst, points, count);
        if (layout.inPlace) srcExtent_ = dstExtent_ = Extent::both(srcExtent_, dstExtent_);
        for (unsigned p = 0; p < 2; ++p)
            src_[p] = drawAny<R>(nth(allData, turn), srcExtent_.size(), turn + p);
    }
    // What it leaves in dst, and in the control word.
    struct Result {
        std::vector<R> planes[2];
        std::uint32_t control = 0;

        bool operator==(const Result& other) const {
            for (int p = 0; p < 2; ++p)
                if (std::memcmp(planes[p].data(), other.planes[p].data(),
                                planes[p].size() * sizeof(R)) != 0)
                    return false;
            return control == other.control;
        }
    };
    Result run() {
        Result result;
        Place<const R> src{{}, layout_.srcStride, layout_.srcDistance};
        Place<R> dst{{}, layout_.dstStride, layout_.dstDistance};
        for (int p = 0; p < 2; ++p) {
            result.planes[p] = layout_.inPlace ? src_[p] : std::vector<R>(dstExtent_.size(), R{-7});
            dst.plane[p] = result.planes[p].data() - dstExtent_.first;
            src.plane[p] = layout_.inPlace ? dst.plane[p] : src_[p].data() - srcExtent_.first;
        }
        const std::uint32_t before = _mm_getcsr();
        _mm_setcsr(defaultControl | nth(allRoundings, turn_ / 3) | nth(allDenormals, turn_ / 5));
        const OrvStatus status = family_.batch(src, dst, number_, static_cast<std::size_t>(count_),
                                               nth(allFlags, turn_ / 2));
        result.control = _mm_getcsr();
        _mm_setcsr(before);
        EXPECT_EQ(status, orvOk);
        return result;
    }

  private:
    const Family<R>& family_;
    int number_;
    Layout layout_;
    int count_;
    unsigned turn_;
    Extent srcExtent_, dstExtent_;
    std::vector<R> src_[2];
};

class EvaluatedProcessor : public testing::TestWithParam<std::uint32_t> {};

TEST_P(EvaluatedProcessor, DoesWhatTheProcessorDoes) {
    const std::uint32_t target = GetParam();
    const bool isHere = (orvgBatchTargets() & target) != 0;
    // ./dev test says so at its end.
    RecordProperty("summary", std::string("batches on ") + nameOf(target) + ": run by the " +
                                  (isHere ? "processor and by the evaluator of machine code"
                                          : "evaluator of machine code, not by this processor"));
    if (!isHere) GTEST_SKIP() << "no " << nameOf(target) << " here";
    EvaluatedTarget evaluated(target);
    ASSERT_EQ(orvgBatchUse(target), orvOk);
    unsigned turn = 0;
    int calls = 0;
    overAll(target, [&]<class R>(const Family<R>& family, int number, int lanes) {
        if (family.points(number) > 1024 || testing::Test::HasFailure()) return;
        const int count = lanes + lanes / 2 + 2;
        const std::vector<Layout> layouts = layoutsOf(family, number, count);
        const auto size = static_cast<unsigned>(layouts.size());
        for (const unsigned l : {0U, 1U, 2 + turn % (size - 2)}) {
            Repeated<R> call(family, number, layouts[l], count, turn++);
            evaluated.rest();
            const auto expected = call.run();
            evaluated.work();
            EXPECT_TRUE(call.run() == expected) << family.name << " of " << number << ", "
                                                << layouts[l].name << "; " << evaluated.complaint();
            ++calls;
        }
    });
    std::printf("%d calls on both\n", calls);
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}

INSTANTIATE_TEST_SUITE_P(Batch, EvaluatedProcessor, testing::ValuesIn(wideTargets()),
                         nameOfParameter);

// What it has, what the operating system keeps for its threads, and the targets of both.
TEST(EvaluatedProcessors, HaveTheTargetsThatTheySayTheyHave) {
    const std::uint32_t avx2 = ORVGEN_BATCH_HAS_AVX2 ? orvTargetAVX2 : 0;
    const std::uint32_t avx512 = ORVGEN_BATCH_HAS_AVX512 ? orvTargetAVX512 : 0;
    const struct {
        evaluator::Features features;
        std::uint32_t targets;
    } rows[] = {
        {{}, 0},
        {{.hasAvx = true}, 0},
        {{.hasAvx = true, .hasAvx2 = true}, avx2},
        {{.hasAvx = true, .hasAvx2 = true, .keepsWide = false}, 0},
        {{.hasAvx = true, .hasAvx2 = true, .hasAvx512 = true}, avx2 | avx512},
        {{.hasAvx = true, .hasAvx2 = true, .hasAvx512 = true, .keepsWidest = false}, avx2},
        {{.hasAvx = true, .hasAvx2 = true, .hasAvx512 = true, .keepsWide = false}, 0},
        {{.hasAvx = true, .hasAvx2 = true, .hasAvx512 = true, .hasAvx512Dq = false}, avx2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EvaluatedLibrary library(row.features);
        const std::uint32_t targets = orvTargetSSE2 | row.targets;
        EXPECT_EQ(library.targets(), targets) << library.processor().complaint();
        for (const std::uint32_t target : {orvTargetSSE2, orvTargetAVX2, orvTargetAVX512})
            EXPECT_EQ(library.use(target), (targets & target) != 0 ? orvOk : orvErrFlag);
        EXPECT_EQ(library.use(0), orvOk);
    }
}

}  // namespace
}  // namespace orvgen::test::batch
