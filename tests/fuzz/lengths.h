// SPDX-License-Identifier: MIT
// A target over families of fixed length: statuses and their order, no write outside dst, src as it
// was, in place the same bits, by name the same as by length.
#pragma once

#include "frame/families.h"
#include "fuzz/memory.h"

namespace orvgen::test::fuzz {

struct Kernel {
    const FamilyInfo* family;
    std::int32_t length;
    OrvStatus (*byName)(const void* src, void* dst, std::int32_t flag);
    OrvStatus (*byLength)(const void* src, void* dst, std::int32_t len, std::int32_t flag);

    std::size_t realBytes() const { return static_cast<std::size_t>(family->realBytes()); }
    std::size_t srcBytes() const {
        return static_cast<std::size_t>(family->srcReals(length)) * realBytes();
    }
    std::size_t dstBytes() const {
        return static_cast<std::size_t>(family->dstReals(length)) * realBytes();
    }
    std::size_t beyond() const {
        return static_cast<std::size_t>(family->behindSrc.bytesOf(length));
    }
};

#define FUZZ_KERNEL(NAME, N, T)                                                                    \
    {.family = &familyOf(#NAME, #T),                                                               \
     .length = N,                                                                                  \
     .byName =                                                                                     \
         [](const void* x, void* y, std::int32_t flag) {                                           \
             return orvg##NAME##_##N##_##T(static_cast<const Orv##T*>(x), static_cast<Orv##T*>(y), \
                                           flag);                                                  \
         },                                                                                        \
     .byLength =                                                                                   \
         [](const void* x, void* y, std::int32_t len, std::int32_t flag) {                         \
             return orvg##NAME##_##T(static_cast<const Orv##T*>(x), static_cast<Orv##T*>(y), len,  \
                                     flag);                                                        \
         }},

template <std::size_t count>
void fuzzLengths(Input& input, const Kernel (&kernels)[count]) {
    static Area from(8192), to(8192), both(8192);
    const Kernel& k = kernels[input.ConsumeIntegralInRange<std::size_t>(0, count - 1)];
    const std::size_t srcBytes = k.srcBytes(), dstBytes = k.dstBytes(), beyond = k.beyond();
    const bool named = input.ConsumeBool();
    const bool anyLength = !named && input.ConsumeBool();
    const auto length = anyLength ? input.ConsumeIntegral<std::int32_t>() : k.length;
    const std::int32_t flag = anyFlag(input);
    const bool noSrc = input.ConsumeIntegralInRange(0, 15) == 0;
    const bool noDst = input.ConsumeIntegralInRange(0, 15) == 0;
    const std::size_t srcGap = k.realBytes() * input.ConsumeIntegralInRange<std::size_t>(0, 16);
    const std::size_t dstGap = k.realBytes() * input.ConsumeIntegralInRange<std::size_t>(0, 16);

    std::uint8_t* src = from.place(srcBytes + beyond, srcGap);
    std::uint8_t* dst = to.place(dstBytes, dstGap);
    const auto samples = anyBytes(input, srcBytes);
    std::memcpy(src, samples.data(), srcBytes);
    std::memset(src + srcBytes, 0, beyond);  // read along: finite
    const auto run = [&](const void* x, void* y) {
        return named ? k.byName(x, y, flag) : k.byLength(x, y, length, flag);
    };

    const bool otherLength = length != k.length;
    const bool inRange = kLengths.has(length);
    if (otherLength && inRange) return;  // the areas are those of the kernel
    const OrvStatus wanted = !inRange         ? orvErrSize
                             : noSrc || noDst ? orvErrNullPtr
                             : !isFlag(flag)  ? orvErrFlag
                                              : orvOk;
    const OrvStatus status = run(noSrc ? nullptr : src, noDst ? nullptr : dst);
    require(status == wanted, "the status follows from the arguments");
    require(std::memcmp(src, samples.data(), srcBytes) == 0, "src is read only");
    if (status != orvOk) {
        require(to.untouched(), "what fails has written nothing");
        return;
    }
    require(to.untouchedAround(), "only dst is written");

    const std::size_t longer = std::max(srcBytes + beyond, dstBytes);
    std::uint8_t* place = both.place(longer, dstGap);
    std::memcpy(place, src, srcBytes + beyond);
    require(run(place, place) == orvOk, "in place is allowed");
    require(both.untouchedAround(), "in place writes only dst");
    require(std::memcmp(place, dst, dstBytes) == 0, "in place gives the same bits");
    std::uint8_t* second = both.place(dstBytes, srcGap);
    require((named ? k.byLength(src, second, length, flag) : k.byName(src, second, flag)) == orvOk,
            "both forms take the same");
    require(std::memcmp(second, dst, dstBytes) == 0, "both forms give the same bits");
}

}  // namespace orvgen::test::fuzz
