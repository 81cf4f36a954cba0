// SPDX-License-Identifier: MIT
// The kernels for batches: each of the W transforms has the bits of the single kernel, and the five
// IEEE flags are the union of those of the single calls.
#include <gtest/gtest.h>
#include <immintrin.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "frame/families.h"

namespace {

template <class R>
using WideKernel = void(const R*, const R*, std::ptrdiff_t, R*, R*, std::ptrdiff_t, std::int32_t,
                        std::size_t, std::ptrdiff_t, std::ptrdiff_t);

}  // namespace

#define DECLARE(NAME, N, T, R)                                   \
    extern "C" WideKernel<R> owngBatch##NAME##_##N##_##T##_avx2; \
    extern "C" WideKernel<R> owngBatch##NAME##_##N##_##T##_avx512;
#define DECLARE_PAIRS(NAME, N, T, R)                             \
    DECLARE(NAME, N, T, R)                                       \
    extern "C" WideKernel<R> owngPairs##NAME##_##N##_##T##_avx2; \
    extern "C" WideKernel<R> owngPairs##NAME##_##N##_##T##_avx512;
#define DECLARE_PAIRS_F(NAME, N, T) DECLARE_PAIRS(NAME, N, T, float)
#define DECLARE_PAIRS_D(NAME, N, T) DECLARE_PAIRS(NAME, N, T, double)
#define DECLARE_F(NAME, N, T) DECLARE(NAME, N, T, float)
#define DECLARE_D(NAME, N, T) DECLARE(NAME, N, T, double)
#ifndef WIDE_LENGTHS
#define WIDE_LENGTHS ORVGEN_LENGTHS
#endif
WIDE_LENGTHS(DECLARE_PAIRS_F, DFTFwd_CToC, 32fc)
WIDE_LENGTHS(DECLARE_PAIRS_F, DFTInv_CToC, 32fc)
WIDE_LENGTHS(DECLARE_PAIRS_F, DFTFwd_RToCCS, 32f)
WIDE_LENGTHS(DECLARE_PAIRS_F, DFTInv_CCSToR, 32f)
WIDE_LENGTHS(DECLARE_F, Hartley, 32f)
WIDE_LENGTHS(DECLARE_PAIRS_D, DFTFwd_CToC, 64fc)
WIDE_LENGTHS(DECLARE_PAIRS_D, DFTInv_CToC, 64fc)
WIDE_LENGTHS(DECLARE_PAIRS_D, DFTFwd_RToCCS, 64f)
WIDE_LENGTHS(DECLARE_PAIRS_D, DFTInv_CCSToR, 64f)
WIDE_LENGTHS(DECLARE_D, Hartley, 64f)
DECLARE_F(DFTInv_PackToR, 7, 32f)
DECLARE_F(DFTInv_PackToR, 49, 32f)
DECLARE_D(DFTInv_PackToR, 7, 64f)
DECLARE_D(DFTInv_PackToR, 49, 64f)

namespace {

using orvgen::Direction;
using orvgen::FamilyInfo;
using orvgen::Layout;

template <class R>
struct Subject {
    const FamilyInfo* family;
    int n;
    std::int32_t (*single)(const void*, void*, std::int32_t);
    WideKernel<R>*avx2, *avx512;
    WideKernel<R>*pairsAvx2 = nullptr, *pairsAvx512 = nullptr;
};

#define FORMS(FORM, NAME, N, T) \
    owng##FORM##NAME##_##N##_##T##_avx2, owng##FORM##NAME##_##N##_##T##_avx512
#define SUBJECT_WITH(NAME, N, T, ...)                                                              \
    {&orvgen::familyOf(#NAME, #T), N,                                                              \
     [](const void* src, void* dst, std::int32_t flag) {                                           \
         return orvg##NAME##_##N##_##T(static_cast<const Orv##T*>(src), static_cast<Orv##T*>(dst), \
                                       flag);                                                      \
     },                                                                                            \
     __VA_ARGS__},
#define SUBJECT(NAME, N, T) SUBJECT_WITH(NAME, N, T, FORMS(Batch, NAME, N, T))
#define SUBJECT_PAIRS(NAME, N, T) \
    SUBJECT_WITH(NAME, N, T, FORMS(Batch, NAME, N, T), FORMS(Pairs, NAME, N, T))

const std::vector<Subject<float>> kSubjectsF = {
    WIDE_LENGTHS(SUBJECT_PAIRS, DFTFwd_CToC, 32fc) WIDE_LENGTHS(SUBJECT_PAIRS, DFTInv_CToC, 32fc)
        WIDE_LENGTHS(SUBJECT_PAIRS, DFTFwd_RToCCS, 32f)
            WIDE_LENGTHS(SUBJECT_PAIRS, DFTInv_CCSToR, 32f) WIDE_LENGTHS(SUBJECT, Hartley, 32f)
                SUBJECT(DFTInv_PackToR, 7, 32f) SUBJECT(DFTInv_PackToR, 49, 32f)};
const std::vector<Subject<double>> kSubjectsD = {
    WIDE_LENGTHS(SUBJECT_PAIRS, DFTFwd_CToC, 64fc) WIDE_LENGTHS(SUBJECT_PAIRS, DFTInv_CToC, 64fc)
        WIDE_LENGTHS(SUBJECT_PAIRS, DFTFwd_RToCCS, 64f)
            WIDE_LENGTHS(SUBJECT_PAIRS, DFTInv_CCSToR, 64f) WIDE_LENGTHS(SUBJECT, Hartley, 64f)
                SUBJECT(DFTInv_PackToR, 7, 64f) SUBJECT(DFTInv_PackToR, 49, 64f)};

constexpr int kMostSlots = 66;
constexpr int kMostNumbers = 2 * kMostSlots;
constexpr int kMostLanes = 16;

// The numbers of one transform as the single kernel takes them, by slot and part; -1: none.
int placeOf(Layout layout, int n, int slot, int part) {
    switch (layout) {
        case Layout::Real:
            return part == 0 && slot < n ? slot : -1;
        case Layout::Complex:
            return slot < n ? 2 * slot + part : -1;
        case Layout::Ccs:
        case Layout::Pack:
            if (2 * slot > n || (part == 1 && (slot == 0 || 2 * slot == n))) return -1;
            return 2 * slot + part - (layout == Layout::Pack && slot > 0 ? 1 : 0);
        case Layout::Perm:
            break;
    }
    return -1;
}

// Values of one kind: ordinary, wide exponents, denormal, special.
template <class R>
R draw(std::mt19937_64& random, int kind) {
    using Limits = std::numeric_limits<R>;
    const R u = std::uniform_real_distribution<R>(-1, 1)(random);
    switch (kind) {
        case 0:
            return u;
        case 1:
            return std::ldexp(u, static_cast<int>(random() % 240) - 120);
        case 2:
            return u * Limits::min();
        case 3:
            return random() % 3 ? u * Limits::max() / 4 : u;
        default: {
            const R special[] = {0,
                                 -R(0),
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 Limits::quiet_NaN(),
                                 Limits::denorm_min(),
                                 u,
                                 u};
            return special[random() % 8];
        }
    }
}

template <class R>
bool sameBits(R a, R b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::memcmp(&a, &b, sizeof a) == 0;
}

constexpr unsigned kExceptions = _MM_EXCEPT_INVALID | _MM_EXCEPT_DIV_ZERO | _MM_EXCEPT_OVERFLOW |
                                 _MM_EXCEPT_UNDERFLOW | _MM_EXCEPT_INEXACT;

// Runs a function under a setting of the unit, and tells the flags that it raised.
template <class F>
unsigned under(unsigned setting, F function) {
    const unsigned before = _mm_getcsr();
    _mm_setcsr((before & ~0xe07fU) | setting);
    function();
    const unsigned raised = _mm_getcsr() & kExceptions;
    _mm_setcsr(before);
    return raised;
}

// The elements of some transforms, side by side: the parts of pairs apart, or interleaved.
template <class R>
struct Memory {
    alignas(64) R re[2 * kMostSlots * kMostLanes], im[kMostSlots * kMostLanes];

    void fill(int byte) { std::memset(this, byte, sizeof *this); }
};

struct Form {
    int lanes;       // of a vector
    int transforms;  // at once
    bool isInterleaved;

    template <class R>
    R& at(Memory<R>& memory, Layout layout, int t, int slot, int part) const {
        if (isInterleaved && layout != Layout::Real)
            return memory.re[2 * (slot * transforms + t) + part];
        return (part ? memory.im : memory.re)[slot * transforms + t];
    }
    template <class R>
    R* second(Memory<R>& memory) const {
        return isInterleaved ? memory.re + lanes : memory.im;
    }
    std::ptrdiff_t step(Layout layout, std::size_t bytes) const {
        const int numbers = isInterleaved && layout != Layout::Real ? 2 : 1;
        return static_cast<std::ptrdiff_t>(bytes) * numbers * transforms;
    }
};

template <class R>
void check(const Subject<R>& s, WideKernel<R>* wide, const Form& form, int rounds) {
    const int lanes = form.transforms;
    std::mt19937_64 random(static_cast<std::uint64_t>(s.n) * 977 + sizeof(R));
    const std::int32_t flags[] = {orvScaleNone, orvScaleBySqrtN, -1};
    for (int round = 0; round < rounds; ++round) {
        const int kind = round % 5;
        const unsigned mode = static_cast<unsigned>(round / 5 % 4) << 13;
        const unsigned flushing = (round / 20 % 2 ? 0x8000U : 0) | (round / 40 % 2 ? 0x0040U : 0);
        const int scale = static_cast<int>(random() % 3);
        const bool inverse = s.family->direction == Direction::Inverse;
        const std::int32_t flag = scale < 2 ? flags[scale]
                                  : inverse ? orvScaleInvByN
                                            : orvScaleFwdByN;
        static Memory<R> src, dst;
        src.fill(0x3d);
        dst.fill(0xa5);
        static R in[kMostLanes][kMostNumbers], out[kMostLanes][kMostNumbers];
        std::memset(in, 0, sizeof in);
        const auto each = [&](Layout layout, auto visit) {
            for (int t = 0; t < lanes; ++t)
                for (int slot = 0; slot < kMostSlots; ++slot)
                    for (int part = 0; part < 2; ++part)
                        if (const int place = placeOf(layout, s.n, slot, part); place >= 0)
                            visit(t, slot, part, place);
        };
        each(s.family->src, [&](int t, int slot, int part, int place) {
            const R value = draw<R>(random, kind);
            in[t][place] = value;
            form.at(src, s.family->src, t, slot, part) = value;
        });
        const unsigned expectedFlags = under(mode | flushing | 0x1f80U, [&] {
            for (int t = 0; t < lanes; ++t) s.single(in[t], out[t], flag);
        });
        const bool inPlace = s.family->src == s.family->dst && round % 2;
        Memory<R>& result = inPlace ? src : dst;
        const unsigned flagsRaised = under(mode | flushing | 0x1f80U, [&] {
            wide(src.re, form.second(src), form.step(s.family->src, sizeof(R)), result.re,
                 form.second(result), form.step(s.family->dst, sizeof(R)), scale, 1, 0, 0);
        });
        int wrong = 0;
        each(s.family->dst, [&](int t, int slot, int part, int place) {
            if (!sameBits(form.at(result, s.family->dst, t, slot, part), out[t][place])) ++wrong;
        });
        // Interleaved, the half spectrum is written whole.
        if (form.isInterleaved && s.family->dst == Layout::Ccs)
            for (int t = 0; t < lanes; ++t)
                for (const int slot : {0, s.n % 2 ? 0 : s.n / 2})
                    if (!sameBits(form.at(result, Layout::Ccs, t, slot, 1), R(0))) ++wrong;
        ASSERT_EQ(wrong, 0) << s.family->name << " " << s.n << " round " << round << " kind "
                            << kind << (inPlace ? " in place" : "");
        ASSERT_EQ(flagsRaised, expectedFlags) << s.family->name << " " << s.n << " round " << round;
    }
}

constexpr int kRounds = 240;

Form apart(int lanes) { return {.lanes = lanes, .transforms = lanes, .isInterleaved = false}; }

// Of a complex element in binary64 a vector holds both parts.
template <class R>
Form interleaved(const Subject<R>& s, int lanes) {
    const bool isWhole = s.family->isComplex() && sizeof(R) == 8;
    return {.lanes = lanes, .transforms = isWhole ? lanes / 2 : lanes, .isInterleaved = true};
}

TEST(WideKernels, Avx2HasTheBitsOfTheSingleKernels) {
    if (!__builtin_cpu_supports("avx2")) GTEST_SKIP() << "no AVX2 here";
    for (const auto& s : kSubjectsF) check(s, s.avx2, apart(8), kRounds);
    for (const auto& s : kSubjectsD) check(s, s.avx2, apart(4), kRounds);
}

TEST(WideKernels, Avx512HasTheBitsOfTheSingleKernels) {
    if (!__builtin_cpu_supports("avx512f")) GTEST_SKIP() << "no AVX-512 here";
    for (const auto& s : kSubjectsF) check(s, s.avx512, apart(16), kRounds);
    for (const auto& s : kSubjectsD) check(s, s.avx512, apart(8), kRounds);
}

TEST(WideKernels, Avx2TakesInterleavedElements) {
    if (!__builtin_cpu_supports("avx2")) GTEST_SKIP() << "no AVX2 here";
    for (const auto& s : kSubjectsF)
        if (s.pairsAvx2) check(s, s.pairsAvx2, interleaved(s, 8), kRounds);
    for (const auto& s : kSubjectsD)
        if (s.pairsAvx2) check(s, s.pairsAvx2, interleaved(s, 4), kRounds);
}

TEST(WideKernels, Avx512TakesInterleavedElements) {
    if (!__builtin_cpu_supports("avx512f")) GTEST_SKIP() << "no AVX-512 here";
    for (const auto& s : kSubjectsF)
        if (s.pairsAvx512) check(s, s.pairsAvx512, interleaved(s, 16), kRounds);
    for (const auto& s : kSubjectsD)
        if (s.pairsAvx512) check(s, s.pairsAvx512, interleaved(s, 8), kRounds);
}

}  // namespace
