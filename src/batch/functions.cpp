// SPDX-License-Identifier: MIT
// The exported functions: what is refused, and which target does the rest.

#include <type_traits>

#include "batch/direct.h"
#include "batch/few.h"
#include "batch/singles.h"
#include "batch/targets.h"
#include "dct4/records.h"
#include "frame/families.h"

namespace orvgen::batch {

namespace {

bool isFlag(std::int32_t flag) {
    return flag == orvScaleFwdByN || flag == orvScaleInvByN || flag == orvScaleBySqrtN ||
           flag == orvScaleNone;
}

// The first thing that is wrong, in the order of the single functions; of a batch of nothing the
// pointers are not looked at.
template <class... Pointers>
[[gnu::always_inline]] inline OrvStatus check(bool hasLength, std::int32_t flag, std::size_t count,
                                              Pointers... pointers) {
    if (!hasLength) return orvErrSize;
    if (count > 0 && ((pointers == nullptr) || ...)) return orvErrNullPtr;
    return isFlag(flag) ? orvOk : orvErrFlag;
}

// The blocks by the current target, and what they leave by the single kernels.
template <class AnyTask>
[[gnu::always_inline]] inline void run(const AnyTask& task) {
    // A single transform is never worth a vector of them.
    if (task.count == 1) return runSingles(task, 0);
    std::size_t done = 0;
    switch (currentTarget()) {
#if ORVGEN_BATCH_AVX512
        case orvTargetAVX512:
            done = runBlocksAvx512(task);
            break;
#endif
#if ORVGEN_BATCH_AVX2
        case orvTargetAVX2:
            done = runBlocksAvx2(task);
            break;
#endif
        default:
            break;
    }
    if (done < task.count) runSingles(task, done);
}

constexpr Kind kindOf(const FamilyInfo& family) {
    const bool isForward = family.direction == Direction::Forward;
    if (family.transform == Transform::Hartley) return Kind::Hartley;
    if (family.isComplex()) return isForward ? Kind::Forward : Kind::Inverse;
    if (isForward) return Kind::RealForward;
    return family.src == Layout::Ccs ? Kind::InverseFromCcs : Kind::InverseFromPack;
}

// What the table says of a family, without its names.
struct Meaning {
    Kind kind;
    Layout src, dst;
    Numbers lengths;
    ScaleRule scale;
    BehindSrc behindSrc;
};
consteval Meaning meaningOf(const FamilyInfo& family) {
    return {.kind = kindOf(family),
            .src = family.src,
            .dst = family.dst,
            .lengths = family.numbers,
            .scale = family.scale,
            .behindSrc = family.behindSrc};
}

Scale scaleOf(ScaleRule rule, std::int32_t flag) {
    if (flag == orvScaleBySqrtN) return scaleBySqrtN;
    const bool byN = (flag == orvScaleFwdByN && rule != ScaleRule::InverseByN) ||
                     (flag == orvScaleInvByN && rule != ScaleRule::ForwardByN);
    return byN ? scaleByN : scaleNone;
}

// Arrays of one element type as arrays of real numbers.
template <class R>
Array<const R> array(const R* p, std::ptrdiff_t stride, std::ptrdiff_t distance) {
    return {p, nullptr, stride, distance};
}
template <class R>
Array<R> array(R* p, std::ptrdiff_t stride, std::ptrdiff_t distance) {
    return {p, nullptr, stride, distance};
}
template <class R, class Pair>
auto pairs(Pair* p, std::ptrdiff_t stride, std::ptrdiff_t distance) {
    using Real = std::conditional_t<std::is_const_v<Pair>, const R, R>;
    Real* re = reinterpret_cast<Real*>(p);
    return Array<Real>{re, re == nullptr ? nullptr : re + 1, 2 * stride, 2 * distance};
}
inline auto array(const Orv32fc* p, std::ptrdiff_t stride, std::ptrdiff_t distance) {
    return pairs<float>(p, stride, distance);
}
inline auto array(Orv32fc* p, std::ptrdiff_t stride, std::ptrdiff_t distance) {
    return pairs<float>(p, stride, distance);
}
inline auto array(const Orv64fc* p, std::ptrdiff_t stride, std::ptrdiff_t distance) {
    return pairs<double>(p, stride, distance);
}
inline auto array(Orv64fc* p, std::ptrdiff_t stride, std::ptrdiff_t distance) {
    return pairs<double>(p, stride, distance);
}

// What a call costs beside its kernels is paid for a few transforms only, often. So the task is put
// together once, by the exported function itself, without copies.
template <class R>
[[gnu::always_inline]] inline OrvStatus transform(const Meaning& meaning, Single<R>* single,
                                                  const Array<const R>& src, const Array<R>& dst,
                                                  std::int32_t n, std::size_t count,
                                                  std::int32_t flag) {
    const OrvStatus status =
        check(meaning.lengths.has(n), flag, count, src.re, dst.re,
              isPairs(meaning.src) ? src.im : src.re, isPairs(meaning.dst) ? dst.im : dst.re);
    if (status != orvOk || count == 0) return status;
    run(Task<R>{.kind = meaning.kind,
                .n = n,
                .srcLayout = meaning.src,
                .dstLayout = meaning.dst,
                .readsBehind = meaning.behindSrc.bytesOf(n) > 0,
                .src = src,
                .dst = dst,
                .count = count,
                .flag = flag,
                .scale = scaleOf(meaning.scale, flag),
                .single = single});
    return orvOk;
}

// The single functions of the complex families take pairs of real numbers here as everywhere.
template <auto function, class R, class Element>
OrvStatus onReals(const R* src, R* dst, std::int32_t length, std::int32_t flag) {
    return function(reinterpret_cast<const Element*>(src), reinterpret_cast<Element*>(dst), length,
                    flag);
}

// Those of the real families as they are: rows that no cache holds are a loop over them, of which
// another jump is a tenth at a few points.
template <auto function, class R, class Element>
constexpr Single<R>* singleOf() {
    if constexpr (std::is_same_v<Element, R>)
        return function;
    else
        return onReals<function, R, Element>;
}

// Whether contiguous transforms are left to the single functions without a task. One is never worth
// a vector.
template <class R>
[[gnu::always_inline]] inline bool areFew(const Meaning& meaning, std::int32_t n,
                                          std::size_t count) {
    if (count == 0 || meaning.behindSrc.bytesOf(n) != 0) return false;
    if (count == 1 || !meaning.lengths.has(n)) return true;
    switch (knownTarget()) {
        case orvTargetAVX512:
            return areFewRows<R>(meaning.kind, n, count, kAvx512Bytes);
        case orvTargetAVX2:
            return areFewRows<R>(meaning.kind, n, count, kAvx2Bytes);
        case orvTargetSSE2:
            return true;
        default:
            return false;
    }
}

// Such transforms, at least one: the calls that the caller would write, of which the first one
// tests for all.
template <auto function, class Element, class S, class D>
[[gnu::always_inline]] inline OrvStatus fewRows(const S* src, std::ptrdiff_t srcDistance, D* dst,
                                                std::ptrdiff_t dstDistance, std::int32_t n,
                                                std::size_t count, std::int32_t flag) {
    for (;;) {
        const OrvStatus status = function(reinterpret_cast<const Element*>(src),
                                          reinterpret_cast<Element*>(dst), n, flag);
        if (status != orvOk || --count == 0) return status;
        src += srcDistance;
        dst += dstDistance;
    }
}

// ---- Whole blocks of transforms side by side, without a task

// The kernels of the current target; none without wide vectors, nor before the processor has been
// asked, which a task does.
template <class R>
[[gnu::always_inline]] inline const Direct<R>* directOf([[maybe_unused]] DirectForm form) {
    switch (knownTarget()) {
#if ORVGEN_BATCH_AVX512
        case orvTargetAVX512:
            return &DirectsAvx512<R>::of[form];
#endif
#if ORVGEN_BATCH_AVX2
        case orvTargetAVX2:
            return &DirectsAvx2<R>::of[form];
#endif
        default:
            return nullptr;
    }
}

constexpr DirectForm directFormOf(Kind kind) {
    switch (kind) {
        case Kind::Forward:
            return directForward;
        case Kind::Inverse:
            return directInverse;
        case Kind::RealForward:
            return directRealForward;
        case Kind::Hartley:
            return directHartley;
        default:
            return directInverseFromCcs;
    }
}
constexpr DirectForm splitFormOf(Kind kind) {
    return kind == Kind::Forward ? directSplitForward : directSplitInverse;
}
// Packed spectra are not what a kernel writes.
constexpr bool areDirect(const Meaning& meaning) {
    return !isPacked(meaning.src) && !isPacked(meaning.dst);
}

// One side of such a call. Without imaginary parts of their own they stand behind the real ones, if
// there are any.
template <class T>
struct Side {
    T *re, *im;
    std::ptrdiff_t step;  // in bytes

    T* second(std::ptrdiff_t lanes) const { return im == nullptr ? re + lanes : im; }
    bool mayCrowd() const { return (step & (2 * kSpreadBytes - 1)) == 0; }
};
template <class R, class Element>
auto sideOf(Element* elements, std::ptrdiff_t stride) {
    using T = std::conditional_t<std::is_const_v<Element>, const R, R>;
    return Side<T>{reinterpret_cast<T*>(elements), nullptr,
                   stride * static_cast<std::ptrdiff_t>(sizeof(Element))};
}
template <class T>
Side<T> sideOf(T* re, T* im, std::ptrdiff_t stride) {
    return {re, im, stride * static_cast<std::ptrdiff_t>(sizeof(T))};
}

// Whether the call is of whole blocks and nothing is wrong with it; then it is done.
template <class R>
[[gnu::always_inline]] inline bool runDirectly(const Meaning& meaning, DirectForm form,
                                               const Side<const R>& src, const Side<R>& dst,
                                               std::int32_t n, std::size_t count,
                                               std::int32_t flag) {
    if (check(meaning.lengths.has(n), flag, count, src.re, dst.re) != orvOk) return false;
    const Direct<R>* const direct = directOf<R>(form);
    if (direct == nullptr) return false;
    const std::size_t blocks = count >> direct->shift;
    if (blocks == 0 || blocks << direct->shift != count) return false;
    if (blocks > 1 && (src.mayCrowd() || dst.mayCrowd() || count > kNearTransforms)) return false;
    direct->kernels[n - kLengths.first](
        src.re, src.second(direct->lanes), src.step, dst.re, dst.second(direct->lanes), dst.step,
        scaleOf(meaning.scale, flag), blocks, direct->src, direct->dst);
    return true;
}

template <class R>
OrvStatus whtTransform(const R* src, std::ptrdiff_t srcStride, std::ptrdiff_t srcDistance, R* dst,
                       std::ptrdiff_t dstStride, std::ptrdiff_t dstDistance, std::int32_t order,
                       std::size_t count, std::int32_t flag) {
    const OrvStatus status = check(kOrders.has(order), flag, count, src, dst);
    if (status != orvOk || count == 0) return status;
    run(WhtTask<R>{order, array(src, srcStride, srcDistance), array(dst, dstStride, dstDistance),
                   count, flag, scaleOf(ScaleRule::BothByN, flag)});
    return orvOk;
}

}  // namespace

}  // namespace orvgen::batch

using namespace orvgen;
using namespace orvgen::batch;

#define REAL_32fc float
#define REAL_64fc double
#define REAL_32f float
#define REAL_64f double

// Every function has a way for whole blocks side by side, and one for all else. A call goes on to
// them as it came, with the same arguments, which the compiler makes a jump.
#define PARAMETERS(S, D)                                                                   \
    const S *src, ptrdiff_t srcStride, ptrdiff_t srcDistance, D *dst, ptrdiff_t dstStride, \
        ptrdiff_t dstDistance, int32_t len, size_t count, int32_t flag
#define ARGUMENTS src, srcStride, srcDistance, dst, dstStride, dstDistance, len, count, flag

#define TRANSFORM(NAME, T, S, D)                                                               \
    static constexpr Meaning meaningOf##NAME##_##T = meaningOf(familyOf(#NAME, #T));           \
    [[gnu::noinline]] static OrvStatus any##NAME##_##T(PARAMETERS(S, D)) {                     \
        constexpr const Meaning& meaning = meaningOf##NAME##_##T;                              \
        if (srcStride == 1 && dstStride == 1 && areFew<REAL_##T>(meaning, len, count))         \
            return fewRows<orvg##NAME##_##T, Orv##T>(src, srcDistance, dst, dstDistance, len,  \
                                                     count, flag);                             \
        return transform<REAL_##T>(meaning, singleOf<orvg##NAME##_##T, REAL_##T, Orv##T>(),    \
                                   array(src, srcStride, srcDistance),                         \
                                   array(dst, dstStride, dstDistance), len, count, flag);      \
    }                                                                                          \
    [[gnu::noinline]] static OrvStatus direct##NAME##_##T(PARAMETERS(S, D)) {                  \
        constexpr const Meaning& meaning = meaningOf##NAME##_##T;                              \
        if (runDirectly(meaning, directFormOf(meaning.kind), sideOf<REAL_##T>(src, srcStride), \
                        sideOf<REAL_##T>(dst, dstStride), len, count, flag))                   \
            return orvOk;                                                                      \
        return any##NAME##_##T(ARGUMENTS);                                                     \
    }                                                                                          \
    OrvStatus orvgBatch##NAME##_##T(PARAMETERS(S, D)) {                                        \
        if (areDirect(meaningOf##NAME##_##T) && srcDistance == 1 && dstDistance == 1)          \
            return direct##NAME##_##T(ARGUMENTS);                                              \
        return any##NAME##_##T(ARGUMENTS);                                                     \
    }
ORVGEN_BATCH_LENGTH_FAMILIES(TRANSFORM)

#define SPLIT_PARAMETERS(R)                                                               \
    const R *srcRe, const R *srcIm, ptrdiff_t srcStride, ptrdiff_t srcDistance, R *dstRe, \
        R *dstIm, ptrdiff_t dstStride, ptrdiff_t dstDistance, int32_t len, size_t count,  \
        int32_t flag
#define SPLIT_ARGUMENTS \
    srcRe, srcIm, srcStride, srcDistance, dstRe, dstIm, dstStride, dstDistance, len, count, flag

#define SPLIT_TRANSFORM(NAME, T, R)                                                                \
    static constexpr Meaning meaningOfSplit##NAME##_##T = meaningOf(familyOf(#NAME, #T "c"));      \
    [[gnu::noinline]] static OrvStatus anySplit##NAME##_##T(SPLIT_PARAMETERS(R)) {                 \
        return transform<R>(meaningOfSplit##NAME##_##T,                                            \
                            onReals<orvg##NAME##_##T##c, R, Orv##T##c>,                            \
                            {srcRe, srcIm, srcStride, srcDistance},                                \
                            {dstRe, dstIm, dstStride, dstDistance}, len, count, flag);             \
    }                                                                                              \
    [[gnu::noinline]] static OrvStatus directSplit##NAME##_##T(SPLIT_PARAMETERS(R)) {              \
        constexpr const Meaning& meaning = meaningOfSplit##NAME##_##T;                             \
        if (srcIm != nullptr && dstIm != nullptr &&                                                \
            runDirectly(meaning, splitFormOf(meaning.kind), sideOf(srcRe, srcIm, srcStride),       \
                        sideOf(dstRe, dstIm, dstStride), len, count, flag))                        \
            return orvOk;                                                                          \
        return anySplit##NAME##_##T(SPLIT_ARGUMENTS);                                              \
    }                                                                                              \
    OrvStatus orvgBatchSplit##NAME##_##T(SPLIT_PARAMETERS(R)) {                                    \
        if (srcDistance == 1 && dstDistance == 1) return directSplit##NAME##_##T(SPLIT_ARGUMENTS); \
        return anySplit##NAME##_##T(SPLIT_ARGUMENTS);                                              \
    }
ORVGEN_BATCH_SPLIT_FAMILIES(SPLIT_TRANSFORM)

OrvStatus orvgBatchWHT_32f(const Orv32f* src, ptrdiff_t srcStride, ptrdiff_t srcDistance,
                           Orv32f* dst, ptrdiff_t dstStride, ptrdiff_t dstDistance, int32_t order,
                           size_t count, int32_t flag) {
    return whtTransform(src, srcStride, srcDistance, dst, dstStride, dstDistance, order, count,
                        flag);
}

OrvStatus orvgBatchWHT_64f(const Orv64f* src, ptrdiff_t srcStride, ptrdiff_t srcDistance,
                           Orv64f* dst, ptrdiff_t dstStride, ptrdiff_t dstDistance, int32_t order,
                           size_t count, int32_t flag) {
    return whtTransform(src, srcStride, srcDistance, dst, dstStride, dstDistance, order, count,
                        flag);
}

namespace orvgen::batch {

namespace {

template <class R, class Spec>
OrvStatus dct4Transform(const R* src, std::ptrdiff_t srcStride, std::ptrdiff_t srcDistance, R* dst,
                        std::ptrdiff_t dstStride, std::ptrdiff_t dstDistance, std::int32_t n,
                        Spec* spec, std::size_t count, const Numbers& lengths,
                        OrvStatus (*single)(const R*, R*, Spec*)) {
    constexpr int lastInLanes = 32;
    if (!lengths.has(n)) return orvErrSize;
    if (count == 0) return orvOk;
    if (src == nullptr || dst == nullptr) return orvErrNullPtr;
    if (n <= lastInLanes) {
        run(Dct4Task<R>{n, array(src, srcStride, srcDistance), array(dst, dstStride, dstDistance),
                        count});
        return orvOk;
    }
    if (spec == nullptr) return orvErrNullPtr;
    if (reinterpret_cast<const dct4::Env1<R>*>(spec)->length != n || srcStride != 1 ||
        dstStride != 1)
        return orvErrSize;
    for (std::size_t i = 0; i < count; ++i) {
        const auto t = static_cast<std::ptrdiff_t>(i);
        const OrvStatus status = single(src + t * srcDistance, dst + t * dstDistance, spec);
        if (status != orvOk) return status;
    }
    return orvOk;
}

}  // namespace

}  // namespace orvgen::batch

OrvStatus orvgBatchDCT4_32f(const Orv32f* src, ptrdiff_t srcStride, ptrdiff_t srcDistance,
                            Orv32f* dst, ptrdiff_t dstStride, ptrdiff_t dstDistance, int32_t len,
                            OrvDCT4Spec_32f* spec, size_t count) {
    static constexpr Numbers lengths = familyOf("DCT4", "32f").numbers;
    return dct4Transform(src, srcStride, srcDistance, dst, dstStride, dstDistance, len, spec, count,
                         lengths, orvgDCT4_32f);
}

OrvStatus orvgBatchDCT4_64f(const Orv64f* src, ptrdiff_t srcStride, ptrdiff_t srcDistance,
                            Orv64f* dst, ptrdiff_t dstStride, ptrdiff_t dstDistance, int32_t len,
                            OrvDCT4Spec_64f* spec, size_t count) {
    static constexpr Numbers lengths = familyOf("DCT4", "64f").numbers;
    return dct4Transform(src, srcStride, srcDistance, dst, dstStride, dstDistance, len, spec, count,
                         lengths, orvgDCT4_64f);
}

const char* orvgBatchStatusText(OrvStatus status) {
    switch (status) {
        case orvOk:
            return "success";
        case orvErrPlan:
            return "the plan was not finished";
        case orvErrSize:
            return "a length, order or stride that the function does not take";
        case orvErrNullPtr:
            return "a null pointer, or no memory for a plan";
        case orvErrFlag:
            return "no scaling flag, or no target of this machine";
        default:
            return "no status of this library";
    }
}
