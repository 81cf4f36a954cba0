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
#define DECLARE_F(NAME, N, T) DECLARE(NAME, N, T, float)
#define DECLARE_D(NAME, N, T) DECLARE(NAME, N, T, double)
#ifndef WIDE_LENGTHS
#define WIDE_LENGTHS ORVGEN_LENGTHS
#endif
WIDE_LENGTHS(DECLARE_F, DFTFwd_CToC, 32fc)
WIDE_LENGTHS(DECLARE_F, DFTInv_CToC, 32fc)
WIDE_LENGTHS(DECLARE_F, DFTFwd_RToCCS, 32f)
WIDE_LENGTHS(DECLARE_F, DFTInv_CCSToR, 32f)
WIDE_LENGTHS(DECLARE_F, Hartley, 32f)
WIDE_LENGTHS(DECLARE_D, DFTFwd_CToC, 64fc)
WIDE_LENGTHS(DECLARE_D, DFTInv_CToC, 64fc)
WIDE_LENGTHS(DECLARE_D, DFTFwd_RToCCS, 64f)
WIDE_LENGTHS(DECLARE_D, DFTInv_CCSToR, 64f)
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
};

#define SUBJECT(NAME, N, T)                                                                        \
    {&orvgen::familyOf(#NAME, #T), N,                                                              \
     [](const void* src, void* dst, std::int32_t flag) {                                           \
         return orvg##NAME##_##N##_##T(static_cast<const Orv##T*>(src), static_cast<Orv##T*>(dst), \
                                       flag);                                                      \
     },                                                                                            \
     owngBatch##NAME##_##N##_##T##_avx2, owngBatch##NAME##_##N##_##T##_avx512},

const std::vector<Subject<float>> kSubjectsF = {
    WIDE_LENGTHS(SUBJECT, DFTFwd_CToC, 32fc) WIDE_LENGTHS(SUBJECT, DFTInv_CToC, 32fc)
        WIDE_LENGTHS(SUBJECT, DFTFwd_RToCCS, 32f) WIDE_LENGTHS(SUBJECT, DFTInv_CCSToR, 32f)
            WIDE_LENGTHS(SUBJECT, Hartley, 32f) SUBJECT(DFTInv_PackToR, 7, 32f)
                SUBJECT(DFTInv_PackToR, 49, 32f)};
const std::vector<Subject<double>> kSubjectsD = {
    WIDE_LENGTHS(SUBJECT, DFTFwd_CToC, 64fc) WIDE_LENGTHS(SUBJECT, DFTInv_CToC, 64fc)
        WIDE_LENGTHS(SUBJECT, DFTFwd_RToCCS, 64f) WIDE_LENGTHS(SUBJECT, DFTInv_CCSToR, 64f)
            WIDE_LENGTHS(SUBJECT, Hartley, 64f) SUBJECT(DFTInv_PackToR, 7, 64f)
                SUBJECT(DFTInv_PackToR, 49, 64f)};

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

template <class R>
struct Memory {
    alignas(64) R re[kMostSlots * kMostLanes], im[kMostSlots * kMostLanes];
};

template <class R>
void check(const Subject<R>& s, WideKernel<R>* wide, int lanes, int rounds) {
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
        std::memset(&src, 0x3d, sizeof src);
        std::memset(&dst, 0xa5, sizeof dst);
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
            (part ? src.im : src.re)[slot * lanes + t] = value;
        });
        const unsigned expectedFlags = under(mode | flushing | 0x1f80U, [&] {
            for (int t = 0; t < lanes; ++t) s.single(in[t], out[t], flag);
        });
        const auto step = static_cast<std::ptrdiff_t>(lanes * static_cast<int>(sizeof(R)));
        const bool inPlace = s.family->src == s.family->dst && round % 2;
        Memory<R>& result = inPlace ? src : dst;
        const unsigned flagsRaised = under(mode | flushing | 0x1f80U, [&] {
            wide(src.re, src.im, step, result.re, result.im, step, scale, 1, 0, 0);
        });
        int wrong = 0;
        each(s.family->dst, [&](int t, int slot, int part, int place) {
            if (!sameBits((part ? result.im : result.re)[slot * lanes + t], out[t][place])) ++wrong;
        });
        ASSERT_EQ(wrong, 0) << s.family->name << " " << s.n << " round " << round << " kind "
                            << kind << (inPlace ? " in place" : "");
        ASSERT_EQ(flagsRaised, expectedFlags) << s.family->name << " " << s.n << " round " << round;
    }
}

constexpr int kRounds = 240;

TEST(WideKernels, Avx2HasTheBitsOfTheSingleKernels) {
    if (!__builtin_cpu_supports("avx2")) GTEST_SKIP() << "no AVX2 here";
    for (const auto& s : kSubjectsF) check(s, s.avx2, 8, kRounds);
    for (const auto& s : kSubjectsD) check(s, s.avx2, 4, kRounds);
}

TEST(WideKernels, Avx512HasTheBitsOfTheSingleKernels) {
    if (!__builtin_cpu_supports("avx512f")) GTEST_SKIP() << "no AVX-512 here";
    for (const auto& s : kSubjectsF) check(s, s.avx512, 16, kRounds);
    for (const auto& s : kSubjectsD) check(s, s.avx512, 8, kRounds);
}

}  // namespace
