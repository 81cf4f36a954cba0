// SPDX-License-Identifier: MIT
// The Walsh-Hadamard transform: as the others, and with its buffer, which may hold anything.
#include "frame/families.h"
#include "fuzz/memory.h"

namespace orvgen::test::fuzz {
namespace {

template <class T>
struct Functions {
    OrvStatus (*byOrder)(const T*, T*, std::int32_t, std::int32_t, std::uint8_t*);
    OrvStatus (*bufferSize)(std::int32_t, std::int32_t*);
    OrvStatus (*byName[kOrders.count()])(const T*, T*, std::int32_t, std::uint8_t*);
};
#define NAMED(NAME, K, T) orvg##NAME##_##K##_##T,
const Functions<float> single{
    orvgWHT_32f, orvgWHTGetBufferSize_32f, {ORVGEN_ORDERS(NAMED, WHT, 32f)}};
const Functions<double> twice{
    orvgWHT_64f, orvgWHTGetBufferSize_64f, {ORVGEN_ORDERS(NAMED, WHT, 64f)}};

template <class T>
void fuzzOrders(Input& input, const Functions<T>& functions) {
    static Area from(1 << 17), to(1 << 17), both(1 << 17), scratch(1 << 17);
    const bool named = input.ConsumeBool();
    const bool anyOrder = !named && input.ConsumeIntegralInRange(0, 3) == 0;
    const auto order =
        anyOrder ? input.ConsumeIntegral<std::int32_t>()
                 : input.ConsumeIntegralInRange<std::int32_t>(kOrders.first, kOrders.last);
    const std::int32_t flag = anyFlag(input);
    const bool noSrc = input.ConsumeIntegralInRange(0, 15) == 0;
    const bool noDst = input.ConsumeIntegralInRange(0, 15) == 0;
    const bool inRange = kOrders.has(order);
    const std::size_t bytes = sizeof(T) << (inRange ? order : 1);
    const std::size_t gap = sizeof(T) * input.ConsumeIntegralInRange<std::size_t>(0, 8);
    const std::size_t dstGap = sizeof(T) * input.ConsumeIntegralInRange<std::size_t>(0, 8);

    std::int32_t size = -1;
    require(functions.bufferSize(order, &size) == (inRange ? orvOk : orvErrSize),
            "the size query knows the orders");
    require(inRange == (size >= 0), "a refused size query leaves the size as it was");
    std::uint8_t* buffer = nullptr;
    const bool given = inRange && input.ConsumeBool();
    if (given) buffer = scratch.place(static_cast<std::size_t>(size), 0);

    auto* src = reinterpret_cast<T*>(from.place(bytes, gap));
    auto* dst = reinterpret_cast<T*>(to.place(bytes, dstGap));
    const auto samples = anyBytes(input, bytes);
    std::memcpy(src, samples.data(), bytes);
    const auto run = [&](const T* x, T* y, std::uint8_t* memory) {
        return named ? functions.byName[order - kOrders.first](x, y, flag, memory)
                     : functions.byOrder(x, y, order, flag, memory);
    };
    const OrvStatus wanted = !inRange         ? orvErrSize
                             : noSrc || noDst ? orvErrNullPtr
                             : !isFlag(flag)  ? orvErrFlag
                                              : orvOk;
    const OrvStatus status = run(noSrc ? nullptr : src, noDst ? nullptr : dst, buffer);
    require(status == wanted, "the status follows from the arguments");
    require(std::memcmp(src, samples.data(), bytes) == 0, "src is read only");
    require(!given || scratch.untouchedAround(), "of the buffer only its bytes are written");
    if (status != orvOk) {
        require(to.untouched(), "what fails has written nothing");
        return;
    }
    require(to.untouchedAround(), "only dst is written");
    auto* place = reinterpret_cast<T*>(both.place(bytes, dstGap));
    std::memcpy(place, src, bytes);
    require(run(place, place, given ? nullptr : scratch.place(static_cast<std::size_t>(size), 0)) ==
                orvOk,
            "in place is allowed, with and without a buffer");
    require(both.untouchedAround(), "in place writes only dst");
    require(std::memcmp(place, dst, bytes) == 0, "in place gives the same bits");
}

}  // namespace

void fuzz(Input& input) {
    if (input.ConsumeBool())
        fuzzOrders(input, single);
    else
        fuzzOrders(input, twice);
}

}  // namespace orvgen::test::fuzz
