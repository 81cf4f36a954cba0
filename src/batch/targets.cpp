// SPDX-License-Identifier: MIT
#include "batch/targets.h"

#include <cpuid.h>

namespace orvgen::batch {

std::uint32_t targetState;

namespace {

std::uint32_t load() { return __atomic_load_n(&targetState, __ATOMIC_RELAXED); }

// Which register files the operating system keeps for its threads.
std::uint32_t systemStates() {
    std::uint32_t low = 0, high = 0;
    asm("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

// The targets that this library is built with.
constexpr std::uint32_t kBuilt = orvTargetSSE2 | (ORVGEN_BATCH_AVX2 ? orvTargetAVX2 : 0) |
                                 (ORVGEN_BATCH_AVX512 ? orvTargetAVX512 : 0);

// What the processor has, and of whose registers the operating system takes care.
std::uint32_t askProcessor() {
    constexpr std::uint32_t ymm = 0x6, zmm = 0xe6;
    constexpr unsigned wide = bit_AVX512F | bit_AVX512DQ | bit_AVX512VL;
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(1, &a, &b, &c, &d) || (c & bit_OSXSAVE) == 0 || (c & bit_AVX) == 0)
        return orvTargetSSE2;
    const std::uint32_t states = systemStates();
    if (!__get_cpuid_count(7, 0, &a, &b, &c, &d) || (states & ymm) != ymm || (b & bit_AVX2) == 0)
        return orvTargetSSE2;
    const bool hasWide = (states & zmm) == zmm && (b & wide) == wide;
    return orvTargetSSE2 | orvTargetAVX2 | (hasWide ? orvTargetAVX512 : 0);
}

std::uint32_t best(std::uint32_t targets) {
    if (targets & orvTargetAVX512) return orvTargetAVX512;
    return targets & orvTargetAVX2 ? orvTargetAVX2 : orvTargetSSE2;
}

}  // namespace

// A choice that somebody makes meanwhile stays.
std::uint32_t askedTargetState() {
    std::uint32_t now = load();
    if (now & kAsked) return now;
    const std::uint32_t targets = askProcessor() & kBuilt;
    const std::uint32_t answer = kAsked | targets | best(targets) << kChoice;
    return __atomic_compare_exchange_n(&targetState, &now, answer, false, __ATOMIC_RELAXED,
                                       __ATOMIC_RELAXED)
               ? answer
               : now;
}

}  // namespace orvgen::batch

using namespace orvgen::batch;

uint32_t orvgBatchTargets(void) { return askedTargetState() & 0xff; }

OrvStatus orvgBatchUse(uint32_t target) {
    const std::uint32_t targets = askedTargetState() & 0xff;
    if (target == 0) target = best(targets);
    if ((target & (target - 1)) != 0 || (target & targets) == 0) return orvErrFlag;
    __atomic_store_n(&targetState, kAsked | targets | target << kChoice, __ATOMIC_RELAXED);
    return orvOk;
}
