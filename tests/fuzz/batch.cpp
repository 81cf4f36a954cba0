// SPDX-License-Identifier: MIT
// Batches in any layout, on any target, against the single functions.
#include <orvgen_batch.h>

#include <set>

#include "frame/families.h"
#include "fuzz/memory.h"

namespace orvgen::test::fuzz {
namespace {

struct Family {
    const FamilyInfo* info;
    std::size_t srcElement, dstElement;  // bytes
    OrvStatus (*single)(const void* src, void* dst, std::int32_t number, std::int32_t flag);
    OrvStatus (*batch)(const void* src, std::ptrdiff_t ss, std::ptrdiff_t sd, void* dst,
                       std::ptrdiff_t ds, std::ptrdiff_t dd, std::int32_t number, std::size_t count,
                       std::int32_t flag);

    std::size_t realBytes() const { return static_cast<std::size_t>(info->realBytes()); }
    std::size_t srcElements(int number) const {
        return static_cast<std::size_t>(info->srcReals(number)) * realBytes() / srcElement;
    }
    std::size_t dstElements(int number) const {
        return static_cast<std::size_t>(info->dstReals(number)) * realBytes() / dstElement;
    }
};

#define BATCH_CALL(NAME, T, S, D)                                                                  \
    [](const void* x, std::ptrdiff_t ss, std::ptrdiff_t sd, void* y, std::ptrdiff_t ds,            \
       std::ptrdiff_t dd, std::int32_t number, std::size_t count, std::int32_t flag) {             \
        return orvgBatch##NAME##_##T(static_cast<const S*>(x), ss, sd, static_cast<D*>(y), ds, dd, \
                                     number, count, flag);                                         \
    }
#define LENGTHS(NAME, T, S, D)                                                                  \
    {.info = &familyOf(#NAME, #T),                                                              \
     .srcElement = sizeof(S),                                                                   \
     .dstElement = sizeof(D),                                                                   \
     .single =                                                                                  \
         [](const void* x, void* y, std::int32_t n, std::int32_t flag) {                        \
             return orvg##NAME##_##T(static_cast<const Orv##T*>(x), static_cast<Orv##T*>(y), n, \
                                     flag);                                                     \
         },                                                                                     \
     .batch = BATCH_CALL(NAME, T, S, D)},
#define ORDERS(NAME, T, LIST)                                                                   \
    {.info = &familyOf(#NAME, #T),                                                              \
     .srcElement = sizeof(Orv##T),                                                              \
     .dstElement = sizeof(Orv##T),                                                              \
     .single =                                                                                  \
         [](const void* x, void* y, std::int32_t k, std::int32_t flag) {                        \
             return orvg##NAME##_##T(static_cast<const Orv##T*>(x), static_cast<Orv##T*>(y), k, \
                                     flag, nullptr);                                            \
         },                                                                                     \
     .batch = BATCH_CALL(NAME, T, Orv##T, Orv##T)},
const Family families[] = {ORVGEN_BATCH_LENGTH_FAMILIES(LENGTHS) ORVGEN_ORDER_FAMILIES(ORDERS)};
constexpr int kLongestOrder = 7;  // of those that are run

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

// What the input asks for.
struct Call {
    const Family& family;
    std::int32_t number, flag = 0;
    bool noSrc = false, noDst = false;
    std::size_t count = 0;

    explicit Call(Input& input)
        : family(families[input.ConsumeIntegralInRange<std::size_t>(0, std::size(families) - 1)]) {
        static_cast<void>(orvgBatchUse(input.PickValueInArray({0U, 1U, 2U, 4U})));
        const Numbers& numbers = family.info->numbers;
        const int last = family.info->byOrder ? kLongestOrder : numbers.last;
        const bool anyNumber = input.ConsumeIntegralInRange(0, 7) == 0;
        number = anyNumber ? input.ConsumeIntegral<std::int32_t>()
                           : input.ConsumeIntegralInRange(numbers.first, last);
    }
    void takeRest(Input& input) {
        flag = anyFlag(input);
        noSrc = input.ConsumeIntegralInRange(0, 15) == 0;
        noDst = input.ConsumeIntegralInRange(0, 15) == 0;
        count = input.ConsumeIntegralInRange<std::size_t>(0, 20);
    }
    bool isInRange() const { return family.info->numbers.has(number); }
    OrvStatus wanted() const {
        return !isInRange()                    ? orvErrSize
               : count > 0 && (noSrc || noDst) ? orvErrNullPtr
               : !isFlag(flag)                 ? orvErrFlag
                                               : orvOk;
    }
};

// One of the arrays: where its elements are, and the bytes from the lowest of them on.
struct Side {
    const Places& places;
    std::size_t element;
    std::uint8_t* bytes;

    std::size_t size() const { return places.extent * element; }
    std::uint8_t* origin() const {
        return bytes + static_cast<std::size_t>(places.origin) * element;
    }
    std::uint8_t* at(std::size_t t, std::size_t j) const {
        return bytes + static_cast<std::size_t>(places.at(t, j)) * element;
    }
};

// Each transform as its single function gives it, and nothing between them changed.
void requireBitsOfSingles(const Call& call, const Side& src, const Side& dst) {
    const Family& f = call.family;
    std::vector<std::uint8_t> expected(dst.size(), 0xA5);
    const Side wanted{dst.places, dst.element, expected.data()};
    const std::size_t srcElements = f.srcElements(call.number);
    const std::size_t dstElements = f.dstElements(call.number);
    std::vector<std::uint8_t> x(srcElements * src.element + 16), y(dstElements * dst.element);
    for (std::size_t t = 0; t < call.count; ++t) {
        for (std::size_t j = 0; j < srcElements; ++j)
            std::memcpy(&x[j * src.element], src.at(t, j), src.element);
        require(f.single(x.data(), y.data(), call.number, call.flag) == orvOk,
                "the single function");
        for (std::size_t j = 0; j < dstElements; ++j)
            std::memcpy(wanted.at(t, j), &y[j * dst.element], dst.element);
    }
    require(f.info->isSingle() ? sameReals<float>(dst.bytes, wanted.bytes, dst.size())
                               : sameReals<double>(dst.bytes, wanted.bytes, dst.size()),
            "the bits of the single functions");
}

void fuzzBatches(Input& input) {
    static Area from(1 << 17), to(1 << 17);
    Call call(input);
    const Family& f = call.family;
    if (call.isInRange() && f.info->byOrder && call.number > kLongestOrder) return;
    call.takeRest(input);
    const int shape = call.isInRange() ? call.number : f.info->numbers.first;
    const Places s(input, f.srcElements(shape), call.count);
    const Places d(input, f.dstElements(shape), call.count);
    if (!d.distinct) return;  // undefined

    const auto put = [&](Area& area, const Places& places, std::size_t element) {
        const auto gap = f.realBytes() * input.ConsumeIntegralInRange<std::size_t>(0, 8);
        return Side{places, element, area.place(places.extent * element, gap)};
    };
    const Side src = put(from, s, f.srcElement), dst = put(to, d, f.dstElement);
    const auto samples = anyBytes(input, src.size());
    std::memcpy(src.bytes, samples.data(), samples.size());
    const OrvStatus status = f.batch(call.noSrc ? nullptr : src.origin(), s.stride, s.distance,
                                     call.noDst ? nullptr : dst.origin(), d.stride, d.distance,
                                     call.number, call.count, call.flag);
    require(status == call.wanted(), "the status follows from the arguments");
    require(std::memcmp(src.bytes, samples.data(), samples.size()) == 0, "src is read only");
    if (status != orvOk || call.count == 0) {
        require(to.untouched(), "what fails has written nothing");
        return;
    }
    require(to.untouchedAround(), "only dst is written");
    requireBitsOfSingles(call, src, dst);
}

}  // namespace

void fuzz(Input& input) { fuzzBatches(input); }

}  // namespace orvgen::test::fuzz
