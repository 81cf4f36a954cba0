// SPDX-License-Identifier: MIT
// The typed calls on batches against the functions of orvgen_batch.h, byte for byte.
#include <orvgen/check.hpp>
#include <orvgen_batch.hpp>

#include "cpp/typed.h"

namespace orvgen::test {
namespace {

using batch::Shape;

// Arrays large enough for the shapes below, of elements of one kind.
constexpr std::size_t size = 4096, transforms = 9;

// From rows with gaps to columns.
Shape from(std::size_t elements) {
    return {.elements = elements,
            .count = transforms,
            .stride = 2,
            .distance = 2 * static_cast<std::ptrdiff_t>(elements) + 3,
            .origin = 1};
}
Shape to(std::size_t elements) {
    return {.elements = elements, .count = transforms, .stride = 11, .distance = -1, .origin = 20};
}

// `typed` gives the bytes of `function`, which takes the places as the C functions do.
template <class S, class D, class Function, class Typed>
void compare(std::size_t srcElements, std::size_t dstElements, Function function, Typed typed) {
    const std::vector<S> in = samples<S>(size, 1);
    const Shape s = from(srcElements), d = to(dstElements);
    std::vector<D> wanted = poison<D>(size), out = poison<D>(size);
    ASSERT_EQ(function(in.data() + s.origin, s.stride, s.distance, wanted.data() + d.origin,
                       d.stride, d.distance),
              orvOk);
    EXPECT_EQ(typed(batch::View<const S>(in, s), batch::View<D>(out, d)), Status::ok);
    EXPECT_TRUE(sameBytes(out, wanted));
    EXPECT_FALSE(sameBytes(out, poison<D>(size)));

    // What does not fit is refused, and nothing is written.
    const std::vector<D> before = out;
    Shape fewer = d, longer = d, outside = d, repeated = d;
    --fewer.count;
    longer.elements += 2;  // one more may be right for the same CCS spectrum
    outside.origin = 7;
    repeated.stride = 1;
    for (const Shape& wrong : {fewer, longer, outside, repeated})
        EXPECT_EQ(typed(batch::View<const S>(in, s), batch::View<D>(out, wrong)),
                  Status::errExtent);
    EXPECT_TRUE(sameBytes(out, before));
}

#define PLACES src, ss, sd, dst, ds, dd
#define BATCH(FUNCTION, number, ...)                                                               \
    [=](const auto* src, auto ss, auto sd, auto* dst, auto ds, auto dd) {                          \
        return FUNCTION(src, ss, sd, dst, ds, dd, static_cast<std::int32_t>(number), __VA_ARGS__); \
    }
#define SCALED(FUNCTION, number) \
    BATCH(FUNCTION, number, transforms, static_cast<std::int32_t>(Scale::bySqrtN))
#define TYPED(...) \
    [](const auto& src, const auto& dst) { return __VA_ARGS__(src, dst, Scale::bySqrtN); }

TEST(Batches, OfComplexDataAreThoseOfTheCInterface) {
    for (const std::size_t n : {2U, 7U, 47U, 48U, 64U}) {
        compare<Orv32fc, Orv32fc>(n, n, SCALED(orvgBatchDFTFwd_CToC_32fc, n), TYPED(batch::fft));
        compare<Orv32fc, Orv32fc>(n, n, SCALED(orvgBatchDFTInv_CToC_32fc, n), TYPED(batch::ifft));
        compare<Orv64fc, Orv64fc>(n, n, SCALED(orvgBatchDFTFwd_CToC_64fc, n), TYPED(batch::fft));
        compare<Orv64fc, Orv64fc>(n, n, SCALED(orvgBatchDFTInv_CToC_64fc, n), TYPED(batch::ifft));
    }
}

TEST(Batches, OfRealDataAreThoseOfTheCInterface) {
    for (const std::size_t n : {2U, 9U, 24U, 63U}) {
        const std::size_t h = n / 2 + 1;
        compare<float, Orv32fc>(n, h, SCALED(orvgBatchDFTFwd_RToCCS_32f, n), TYPED(batch::rfft));
        compare<double, Orv64fc>(n, h, SCALED(orvgBatchDFTFwd_RToCCS_64f, n), TYPED(batch::rfft));
        compare<Orv32fc, float>(h, n, SCALED(orvgBatchDFTInv_CCSToR_32f, n), TYPED(batch::irfft));
        compare<Orv64fc, double>(h, n, SCALED(orvgBatchDFTInv_CCSToR_64f, n), TYPED(batch::irfft));
        compare<float, float>(n, n, SCALED(orvgBatchDFTFwd_RToPack_32f, n),
                              TYPED(batch::rfft<Layout::pack>));
        compare<double, double>(n, n, SCALED(orvgBatchDFTFwd_RToPack_64f, n),
                                TYPED(batch::rfft<Layout::pack>));
        compare<float, float>(n, n, SCALED(orvgBatchDFTInv_PackToR_32f, n),
                              TYPED(batch::irfft<Layout::pack>));
        compare<double, double>(n, n, SCALED(orvgBatchDFTInv_PackToR_64f, n),
                                TYPED(batch::irfft<Layout::pack>));
        compare<float, float>(n, n, SCALED(orvgBatchDFTFwd_RToPerm_32f, n),
                              TYPED(batch::rfft<Layout::perm>));
        compare<double, double>(n, n, SCALED(orvgBatchDFTFwd_RToPerm_64f, n),
                                TYPED(batch::rfft<Layout::perm>));
        compare<float, float>(n, n, SCALED(orvgBatchDFTInv_PermToR_32f, n),
                              TYPED(batch::irfft<Layout::perm>));
        compare<double, double>(n, n, SCALED(orvgBatchDFTInv_PermToR_64f, n),
                                TYPED(batch::irfft<Layout::perm>));
    }
}

TEST(Batches, OfHartleyAndHadamardAreThoseOfTheCInterface) {
    for (const std::size_t n : {2U, 9U, 24U, 63U}) {
        compare<float, float>(n, n, SCALED(orvgBatchHartley_32f, n), TYPED(batch::hartley));
        compare<double, double>(n, n, SCALED(orvgBatchHartley_64f, n), TYPED(batch::hartley));
    }
    for (const std::size_t k : {1U, 3U, 7U}) {
        const std::size_t n = std::size_t{1} << k;
        compare<float, float>(n, n, SCALED(orvgBatchWHT_32f, k), TYPED(batch::wht));
        compare<double, double>(n, n, SCALED(orvgBatchWHT_64f, k), TYPED(batch::wht));
    }
}

TEST(Batches, OfTheDct4AreThoseOfTheCInterface) {
    const auto typed = [](const auto& src, const auto& dst) { return batch::dct4(src, dst); };
    for (const std::size_t n : {2U, 8U, 32U}) {
        compare<float, float>(n, n, BATCH(orvgBatchDCT4_32f, n, nullptr, transforms), typed);
        compare<double, double>(n, n, BATCH(orvgBatchDCT4_64f, n, nullptr, transforms), typed);
    }
    // Through a plan, whose length is that of the views.
    Dct4<float> plan = check(Dct4<float>(Length{64}));
    const std::vector<float> x = samples<float>(64 * transforms, 1);
    std::vector<float> wanted = poison<float>(x.size()), y = wanted;
    ASSERT_EQ(orvgBatchDCT4_32f(x.data(), 1, 64, wanted.data(), 1, 64, 64, plan.get(), transforms),
              orvOk);
    EXPECT_EQ(batch::dct4(batch::rows(x, 64), batch::rows(y, 64)), Status::errSize);
    EXPECT_EQ(batch::dct4(batch::rows(x, 32), batch::rows(y, 32), plan), Status::errExtent);
    Dct4<float> none;
    EXPECT_EQ(batch::dct4(batch::rows(x, 64), batch::rows(y, 64), none), Status::errNullPtr);
    EXPECT_TRUE(sameBytes(y, poison<float>(y.size())));
    EXPECT_EQ(batch::dct4(batch::rows(x, 64), batch::rows(y, 64), plan), Status::ok);
    EXPECT_TRUE(sameBytes(y, wanted));
}

template <class R, class Function, class Typed>
void compareSplit(std::size_t n, Function function, Typed typed) {
    const std::vector<R> re = samples<R>(size, 1), im = samples<R>(size, 2);
    const Shape s = from(n), d = to(n);
    std::vector<R> wantedRe = poison<R>(size), wantedIm = wantedRe, yRe = wantedRe, yIm = wantedRe;
    ASSERT_EQ(function(re.data() + s.origin, im.data() + s.origin, s.stride, s.distance,
                       wantedRe.data() + d.origin, wantedIm.data() + d.origin, d.stride, d.distance,
                       static_cast<std::int32_t>(n), transforms, orvScaleFwdByN),
              orvOk);
    const batch::Split<const R> from(re, im, s);
    EXPECT_EQ(typed(from, batch::Split<R>(yRe, yIm, d)), Status::ok);
    EXPECT_TRUE(sameBytes(yRe, wantedRe));
    EXPECT_TRUE(sameBytes(yIm, wantedIm));
    EXPECT_EQ(typed(from, batch::Split<R>(yRe, std::span(yIm).first(3), d)), Status::errExtent);
}
TEST(Batches, OfSplitArraysAreThoseOfTheCInterface) {
    const auto forward = [](const auto& src, const auto& dst) {
        return batch::fft(src, dst, Scale::fwdByN);
    };
    const auto inverse = [](const auto& src, const auto& dst) {
        return batch::ifft(src, dst, Scale::fwdByN);
    };
    for (const std::size_t n : {2U, 31U, 64U}) {
        compareSplit<float>(n, orvgBatchSplitDFTFwd_CToC_32f, forward);
        compareSplit<float>(n, orvgBatchSplitDFTInv_CToC_32f, inverse);
        compareSplit<double>(n, orvgBatchSplitDFTFwd_CToC_64f, forward);
        compareSplit<double>(n, orvgBatchSplitDFTInv_CToC_64f, inverse);
    }
}

TEST(Batches, RefuseLengthsAndScales) {
    std::vector<float> x(65 * 4), y(65 * 4);
    EXPECT_EQ(batch::hartley(batch::rows(x, 65), batch::rows(y, 65), Scale::none), Status::errSize);
    EXPECT_EQ(batch::hartley(batch::rows(x, 1), batch::rows(y, 1), Scale::none), Status::errSize);
    EXPECT_EQ(batch::wht(batch::rows(x, 12), batch::rows(y, 12), Scale::none), Status::errSize);
    EXPECT_EQ(batch::hartley(batch::rows(x, 5), batch::rows(y, 5), Scale{3}), Status::errFlag);
    EXPECT_EQ(batch::hartley(batch::rows(x, 1000), batch::rows(y, 1000), Scale::none),
              Status::errSize);
    std::vector<float> nothing;
    EXPECT_EQ(batch::hartley(batch::rows(nothing, 8), batch::rows(nothing, 8), Scale::none),
              Status::ok);
}

TEST(Batches, UseTheTargetsThatThereAre) {
    EXPECT_TRUE(batch::available(batch::Target::sse2));
    for (const auto target : {batch::Target::sse2, batch::Target::avx2, batch::Target::avx512})
        EXPECT_EQ(batch::use(target), batch::available(target) ? Status::ok : Status::errFlag);
    EXPECT_EQ(batch::use(static_cast<batch::Target>(64)), Status::errFlag);
    EXPECT_EQ(batch::use(batch::Target::best), Status::ok);
}

TEST(Batches, HaveTheLibrarysTextsOfStatuses) {
    for (const Status status : {Status::ok, Status::errPlan, Status::errSize, Status::errNullPtr,
                                Status::errFlag, static_cast<Status>(-1)})
        EXPECT_STREQ(statusText(status), orvgBatchStatusText(static_cast<OrvStatus>(status)));
    EXPECT_STRNE(statusText(Status::errExtent), statusText(static_cast<Status>(-1)));
}

}  // namespace
}  // namespace orvgen::test
