// SPDX-License-Identifier: MIT
#include "batch/families.h"

#include <type_traits>

#include "frame/names.h"

namespace orvgen::test::batch {

Runner batchRunner;

namespace {

std::uint64_t wordOf(const void* p) { return reinterpret_cast<std::uint64_t>(p); }
std::uint64_t wordOf(std::size_t n) { return n; }
std::uint64_t wordOf(std::ptrdiff_t n) { return static_cast<std::uint64_t>(n); }
// What stands in the upper half of a register is nobody's.
std::uint64_t wordOf(std::int32_t n) { return 0x5a5a5a5a00000000 | static_cast<std::uint32_t>(n); }

// A call with these arguments, as whoever makes the calls makes it.
template <class... Parameters>
OrvStatus run(OrvStatus (*function)(Parameters...), std::type_identity_t<Parameters>... arguments) {
    if (!batchRunner) return function(arguments...);
    const std::uint64_t words[] = {wordOf(arguments)...};
    return batchRunner(reinterpret_cast<const void*>(function), words);
}

std::vector<int> listOf(const Numbers& numbers, int most = kLengths.last) {
    std::vector<int> list;
    for (const int n : numbers)
        if (n <= most) list.push_back(n);
    return list;
}

Side sideOf(orvgen::Layout layout) {
    const bool pairs = layout == orvgen::Layout::Complex || layout == orvgen::Layout::Ccs;
    return {.planes = 1, .width = pairs ? 2 : 1, .bins = layout == orvgen::Layout::Ccs};
}

constexpr Side kSplitSide = {.planes = 2, .width = 1, .bins = false};

// Enough for the largest order; the single functions ask for a 16-byte boundary.
alignas(16) thread_local std::uint8_t whtBuffer[1 << 17];

// Plans of up to 32 points are a few words.
alignas(32) thread_local std::uint8_t planBlock[256];

template <class R>
struct Families {
    std::vector<Family<R>> list;

    template <class S, class D, class Single, class Batch>
    void addLengths(const FamilyInfo& family, Single single, Batch batch) {
        list.push_back({.name = "orvgBatch" + shortName(family),
                        .numbers = listOf(family.numbers),
                        .byOrder = family.byOrder,
                        .scaled = true,
                        .src = sideOf(family.src),
                        .dst = sideOf(family.dst),
                        .single = single,
                        .batch = [batch](const Place<const R>& src, const Place<R>& dst, int n,
                                         std::size_t count, std::int32_t flag) {
                            return run(batch, reinterpret_cast<const S*>(src.plane[0]), src.stride,
                                       src.distance, reinterpret_cast<D*>(dst.plane[0]), dst.stride,
                                       dst.distance, n, count, flag);
                        }});
    }

    template <class Single, class Batch>
    void addSplit(const FamilyInfo& family, const std::string& element, Single single,
                  Batch batch) {
        list.push_back({.name = "orvgBatchSplit" + std::string(family.name) + "_" + element,
                        .numbers = listOf(family.numbers),
                        .byOrder = family.byOrder,
                        .scaled = true,
                        .src = kSplitSide,
                        .dst = kSplitSide,
                        .single = single,
                        .batch = [batch](const Place<const R>& src, const Place<R>& dst, int n,
                                         std::size_t count, std::int32_t flag) {
                            return run(batch, src.plane[0], src.plane[1], src.stride, src.distance,
                                       dst.plane[0], dst.plane[1], dst.stride, dst.distance, n,
                                       count, flag);
                        }});
    }

    template <class Single, class Batch>
    void addWht(const FamilyInfo& family, Single single, Batch batch) {
        list.push_back({.name = "orvgBatch" + shortName(family),
                        .numbers = listOf(family.numbers),
                        .byOrder = family.byOrder,
                        .scaled = true,
                        .src = sideOf(family.src),
                        .dst = sideOf(family.dst),
                        .single =
                            [single](const R* src, R* dst, int order, std::int32_t flag) {
                                return single(src, dst, order, flag, whtBuffer);
                            },
                        .batch =
                            [batch](const Place<const R>& src, const Place<R>& dst, int order,
                                    std::size_t count, std::int32_t flag) {
                                return run(batch, src.plane[0], src.stride, src.distance,
                                           dst.plane[0], dst.stride, dst.distance, order, count,
                                           flag);
                            }});
    }

    template <class Spec, class Init, class Single, class Batch>
    void addDct4(const FamilyInfo& family, Init init, Single single, Batch batch) {
        // Longer ones run by plans.
        constexpr int lastInLanes = 32;
        list.push_back({.name = "orvgBatch" + shortName(family),
                        .numbers = listOf(family.numbers, lastInLanes),
                        .byOrder = family.byOrder,
                        .scaled = false,
                        .src = sideOf(family.src),
                        .dst = sideOf(family.dst),
                        .single =
                            [init, single](const R* src, R* dst, int n, std::int32_t) {
                                Spec* plan = nullptr;
                                const OrvStatus status = init(&plan, n, planBlock);
                                return status != orvOk ? status : single(src, dst, plan);
                            },
                        .batch =
                            [batch](const Place<const R>& src, const Place<R>& dst, int n,
                                    std::size_t count, std::int32_t) {
                                return run(batch, src.plane[0], src.stride, src.distance,
                                           dst.plane[0], dst.stride, dst.distance, n, nullptr,
                                           count);
                            }});
    }
};

using Real_32f = float;
using Real_64f = double;
using Real_32fc = float;
using Real_64fc = double;

#define ADD_LENGTHS(NAME, T, S, D)                                                \
    if constexpr (std::is_same_v<R, Real_##T>)                                    \
        all.template addLengths<S, D>(                                            \
            familyOf(#NAME, #T),                                                  \
            [](const R* src, R* dst, int n, std::int32_t flag) {                  \
                return orvg##NAME##_##T(reinterpret_cast<const Orv##T*>(src),     \
                                        reinterpret_cast<Orv##T*>(dst), n, flag); \
            },                                                                    \
            orvgBatch##NAME##_##T);
#define ADD_SPLIT(NAME, T, REAL)                                                        \
    if constexpr (std::is_same_v<R, REAL>)                                              \
        all.addSplit(                                                                   \
            familyOf(#NAME, #T "c"), #T,                                                \
            [](const R* src, R* dst, int n, std::int32_t flag) {                        \
                return orvg##NAME##_##T##c(reinterpret_cast<const Orv##T##c*>(src),     \
                                           reinterpret_cast<Orv##T##c*>(dst), n, flag); \
            },                                                                          \
            orvgBatchSplit##NAME##_##T);

template <class R>
std::vector<Family<R>> listFamilies() {
    Families<R> all;
    ORVGEN_BATCH_LENGTH_FAMILIES(ADD_LENGTHS)
    ORVGEN_BATCH_SPLIT_FAMILIES(ADD_SPLIT)
    if constexpr (std::is_same_v<R, float>) {
        all.addWht(familyOf("WHT", "32f"), orvgWHT_32f, orvgBatchWHT_32f);
        all.template addDct4<OrvDCT4Spec_32f>(familyOf("DCT4", "32f"), orvgDCT4Init_32f,
                                              orvgDCT4_32f, orvgBatchDCT4_32f);
    } else {
        all.addWht(familyOf("WHT", "64f"), orvgWHT_64f, orvgBatchWHT_64f);
        all.template addDct4<OrvDCT4Spec_64f>(familyOf("DCT4", "64f"), orvgDCT4Init_64f,
                                              orvgDCT4_64f, orvgBatchDCT4_64f);
    }
    return all.list;
}

}  // namespace

template <>
const std::vector<Family<float>>& families() {
    static const auto list = listFamilies<float>();
    return list;
}
template <>
const std::vector<Family<double>>& families() {
    static const auto list = listFamilies<double>();
    return list;
}

std::vector<std::uint32_t> runnableTargets() {
    std::vector<std::uint32_t> targets;
    for (const std::uint32_t t : {orvTargetSSE2, orvTargetAVX2, orvTargetAVX512})
        if ((orvgBatchTargets() & t) != 0) targets.push_back(t);
    return targets;
}

const char* nameOf(std::uint32_t target) {
    switch (target) {
        case orvTargetSSE2:
            return "SSE2";
        case orvTargetAVX2:
            return "AVX2";
        default:
            return "AVX-512";
    }
}

}  // namespace orvgen::test::batch
