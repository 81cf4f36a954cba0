// SPDX-License-Identifier: MIT
// Batches in any layout, on any target, against the single functions.
#include <orvgen_batch.h>

#include <set>

#include "fuzz/memory.h"

namespace orvgen::test::fuzz {
namespace {

// What families have in common; elements of src and dst may be bins of a CCS spectrum.
struct Family {
    bool order, srcBins, dstBins;
    std::size_t srcElement, dstElement, real;
    OrvStatus (*single)(const void* src, void* dst, std::int32_t number, std::int32_t flag);
    OrvStatus (*batch)(const void* src, std::ptrdiff_t ss, std::ptrdiff_t sd, void* dst,
                       std::ptrdiff_t ds, std::ptrdiff_t dd, std::int32_t number, std::size_t count,
                       std::int32_t flag);
};

#define BATCH_CALL(NAME, T, S, D)                                                                  \
    [](const void* x, std::ptrdiff_t ss, std::ptrdiff_t sd, void* y, std::ptrdiff_t ds,            \
       std::ptrdiff_t dd, std::int32_t number, std::size_t count, std::int32_t flag) {             \
        return orvgBatch##NAME##_##T(static_cast<const S*>(x), ss, sd, static_cast<D*>(y), ds, dd, \
                                     number, count, flag);                                         \
    }
#define LENGTHS(NAME, T, S, D)                                                                     \
    {false,                                                                                        \
     sizeof(S) > sizeof(Orv##T),                                                                   \
     sizeof(D) > sizeof(Orv##T),                                                                   \
     sizeof(S),                                                                                    \
     sizeof(D),                                                                                    \
     (#T)[0] == '3' ? 4 : 8,                                                                       \
     [](const void* x, void* y, std::int32_t n, std::int32_t flag) {                               \
         return orvg##NAME##_##T(static_cast<const Orv##T*>(x), static_cast<Orv##T*>(y), n, flag); \
     },                                                                                            \
     BATCH_CALL(NAME, T, S, D)},
#define ORDERS(T)                                                                            \
    {true,                                                                                   \
     false,                                                                                  \
     false,                                                                                  \
     sizeof(Orv##T),                                                                         \
     sizeof(Orv##T),                                                                         \
     sizeof(Orv##T),                                                                         \
     [](const void* x, void* y, std::int32_t k, std::int32_t flag) {                         \
         return orvgWHT_##T(static_cast<const Orv##T*>(x), static_cast<Orv##T*>(y), k, flag, \
                            nullptr);                                                        \
     },                                                                                      \
     BATCH_CALL(WHT, T, Orv##T, Orv##T)},
const Family families[] = {ORVGEN_BATCH_LENGTH_FAMILIES(LENGTHS) ORDERS(32f) ORDERS(64f)};

// Equal bits, but for the payloads of NaN.
template <class R>
bool sameReals(const std::uint8_t* a, const std::uint8_t* b, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; i += sizeof(R)) {
        R x, y;
        std::memcpy(&x, a + i, sizeof x);
        std::memcpy(&y, b + i, sizeof y);
        if (std::memcmp(&x, &y, sizeof x) != 0 && !(x != x && y != y)) return false;
    }
    return true;
}

// Where the elements of a batch are: index j * stride + t * distance from `origin`, none negative.
struct Places {
    std::ptrdiff_t stride, distance, origin = 0;
    std::size_t extent = 0;
    bool distinct = true;

    Places(Input& input, std::size_t elements, std::size_t count)
        : stride(input.ConsumeIntegralInRange(-20, 20)),
          distance(input.ConsumeIntegralInRange(-70, 70)) {
        std::set<std::ptrdiff_t> all;
        for (std::size_t t = 0; t < count; ++t)
            for (std::size_t j = 0; j < elements; ++j) distinct &= all.insert(at(t, j)).second;
        if (all.empty()) return;
        origin = -*all.begin();
        extent = static_cast<std::size_t>(*all.rbegin() - *all.begin() + 1);
    }
    std::ptrdiff_t at(std::size_t t, std::size_t j) const {
        return origin + static_cast<std::ptrdiff_t>(j) * stride +
               static_cast<std::ptrdiff_t>(t) * distance;
    }
};

void fuzzBatches(Input& input) {
    static Area from(1 << 17), to(1 << 17);
    const Family& f =
        families[input.ConsumeIntegralInRange<std::size_t>(0, std::size(families) - 1)];
    static_cast<void>(orvgBatchUse(input.PickValueInArray({0U, 1U, 2U, 4U})));
    const bool anyNumber = input.ConsumeIntegralInRange(0, 7) == 0;
    const auto number = anyNumber ? input.ConsumeIntegral<std::int32_t>()
                        : f.order ? input.ConsumeIntegralInRange(1, 7)
                                  : input.ConsumeIntegralInRange(2, 64);
    const bool inRange = number >= (f.order ? 1 : 2) && number <= (f.order ? 13 : 64);
    if (inRange && f.order && number > 7) return;
    const auto flag = anyFlag(input);
    const bool noSrc = input.ConsumeIntegralInRange(0, 15) == 0;
    const bool noDst = input.ConsumeIntegralInRange(0, 15) == 0;
    const auto count = input.ConsumeIntegralInRange<std::size_t>(0, 20);
    const auto points = !inRange  ? std::size_t{2}
                        : f.order ? std::size_t{1} << number
                                  : static_cast<std::size_t>(number);
    const std::size_t srcElements = f.srcBins ? points / 2 + 1 : points;
    const std::size_t dstElements = f.dstBins ? points / 2 + 1 : points;
    const Places s(input, srcElements, count), d(input, dstElements, count);
    if (!d.distinct) return;  // undefined

    std::uint8_t* src = from.place(s.extent * f.srcElement,
                                   f.real * input.ConsumeIntegralInRange<std::size_t>(0, 8));
    std::uint8_t* dst =
        to.place(d.extent * f.dstElement, f.real * input.ConsumeIntegralInRange<std::size_t>(0, 8));
    const auto samples = anyBytes(input, s.extent * f.srcElement);
    std::memcpy(src, samples.data(), samples.size());
    const OrvStatus wanted = !inRange                        ? orvErrSize
                             : count > 0 && (noSrc || noDst) ? orvErrNullPtr
                             : !isFlag(flag)                 ? orvErrFlag
                                                             : orvOk;
    const auto first = [](std::uint8_t* area, const Places& places, std::size_t element) {
        return area + static_cast<std::size_t>(places.origin) * element;
    };
    const OrvStatus status = f.batch(noSrc ? nullptr : first(src, s, f.srcElement), s.stride,
                                     s.distance, noDst ? nullptr : first(dst, d, f.dstElement),
                                     d.stride, d.distance, number, count, flag);
    require(status == wanted, "the status follows from the arguments");
    require(std::memcmp(src, samples.data(), samples.size()) == 0, "src is read only");
    if (status != orvOk || count == 0) {
        require(to.untouched(), "what fails has written nothing");
        return;
    }
    require(to.untouchedAround(), "only dst is written");

    // Each transform as its single function gives it, and nothing between them changed.
    std::vector<std::uint8_t> between(d.extent * f.dstElement, 0xA5);
    std::vector<std::uint8_t> x(srcElements * f.srcElement + 16), y(dstElements * f.dstElement);
    for (std::size_t t = 0; t < count; ++t) {
        for (std::size_t j = 0; j < srcElements; ++j)
            std::memcpy(&x[j * f.srcElement],
                        src + static_cast<std::size_t>(s.at(t, j)) * f.srcElement, f.srcElement);
        require(f.single(x.data(), y.data(), number, flag) == orvOk, "the single function");
        for (std::size_t j = 0; j < dstElements; ++j)
            std::memcpy(&between[static_cast<std::size_t>(d.at(t, j)) * f.dstElement],
                        &y[j * f.dstElement], f.dstElement);
    }
    require(f.real == 4 ? sameReals<float>(dst, between.data(), between.size())
                        : sameReals<double>(dst, between.data(), between.size()),
            "the bits of the single functions");
}

}  // namespace
}  // namespace orvgen::test::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orvgen::test::fuzz::Input input(data, size);
    orvgen::test::fuzz::fuzzBatches(input);
    return 0;
}
