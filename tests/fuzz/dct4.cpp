// SPDX-License-Identifier: MIT
// The DCT-IV: lengths that are asked for, plans in memory of every alignment, runs.
#include "fuzz/memory.h"
#include "support/dct4_functions.h"

namespace orvgen::test::fuzz {
namespace {

// Of the lengths 2^k + 1 the first that is accepted; the first power whose size does not fit.
template <class R>
constexpr std::int32_t firstPlusOne = sizeof(R) == 4 ? 33 : 9;
template <class R>
constexpr std::int32_t firstDoubtful = sizeof(R) == 4 ? 1 << 30 : 1 << 29;

bool isPower(std::int64_t n) { return n >= 2 && (n & (n - 1)) == 0; }

// The lengths that the header says are accepted: powers of two, those plus 1, and two whose size
// does not fit.
template <class R>
bool isAccepted(std::int32_t n) {
    constexpr std::int32_t longest = Dct4Functions<R>::longest;
    if (isPower(n)) return n <= longest || n >= firstDoubtful<R>;
    const std::int64_t power = static_cast<std::int64_t>(n) - 1;
    return isPower(power) && n >= firstPlusOne<R> &&
           (power <= longest || power >= firstDoubtful<R>);
}

template <class R>
void fuzzPlans(Input& input) {
    using F = Dct4Functions<R>;
    static Area from(1 << 15), to(1 << 15), both(1 << 15), memory(1 << 18);
    const bool anyLength = input.ConsumeIntegralInRange(0, 2) == 0;
    const auto n = anyLength ? input.ConsumeIntegral<std::int32_t>()
                             : 1 << input.ConsumeIntegralInRange(1, 11);
    std::int32_t size = -1;
    const OrvStatus asked = F::getSize(n, &size);
    require(asked == (isAccepted<R>(n) ? orvOk : orvErrSize), "the size query knows the lengths");
    require((asked == orvOk) == (size != -1), "a refused size query leaves the size as it was");
    typename F::Spec* plan = nullptr;
    require(F::init(nullptr, 8, memory.place(4096, 0)) == orvErrNullPtr, "a place for the plan");
    require(F::init(&plan, 8, nullptr) == orvErrNullPtr, "memory for the plan");
    if (asked != orvOk) {
        require(F::initAlloc(&plan, n) == orvErrSize && plan == nullptr, "no plan for this length");
        return;
    }
    if (!isPower(n) || n > 2048) return;  // a run means nothing, or takes too long here

    const auto bytes = static_cast<std::size_t>(n) * sizeof(R);
    const std::size_t gap = sizeof(R) * input.ConsumeIntegralInRange<std::size_t>(0, 8);
    const std::size_t dstGap = sizeof(R) * input.ConsumeIntegralInRange<std::size_t>(0, 8);
    const std::size_t planGap = input.ConsumeIntegralInRange<std::size_t>(0, 64);
    std::uint8_t* block = memory.place(static_cast<std::size_t>(size), planGap);
    require(F::init(&plan, n, block) == orvOk && plan != nullptr, "a plan in a block");
    require(memory.untouchedAround(), "of the block only its bytes are written");
    typename F::Spec* own = nullptr;
    require(F::initAlloc(&own, n) == orvOk && own != nullptr, "a plan in memory of its own");

    auto* src = reinterpret_cast<R*>(from.place(bytes, gap));
    auto* dst = reinterpret_cast<R*>(to.place(bytes, dstGap));
    const auto samples = anyBytes(input, bytes);
    std::memcpy(src, samples.data(), bytes);
    require(F::run(nullptr, dst, plan) == orvErrNullPtr, "a source");
    require(F::run(src, nullptr, plan) == orvErrNullPtr, "a destination");
    require(F::run(src, dst, nullptr) == orvErrNullPtr, "a plan");
    require(to.untouched(), "what fails has written nothing");
    require(F::run(src, dst, plan) == orvOk, "a run");
    require(to.untouchedAround() && memory.untouchedAround(), "only dst and the plan are written");
    require(std::memcmp(src, samples.data(), bytes) == 0, "src is read only");
    auto* place = reinterpret_cast<R*>(both.place(bytes, gap));
    std::memcpy(place, src, bytes);
    require(F::run(place, place, own) == orvOk, "in place, by another plan");
    require(both.untouchedAround(), "in place writes only dst");
    require(std::memcmp(place, dst, bytes) == 0, "in place gives the same bits");
    require(F::free(own) == orvOk && F::free(nullptr) == orvErrNullPtr, "plans are given back");
}

}  // namespace

void fuzz(Input& input) {
    if (input.ConsumeBool())
        fuzzPlans<float>(input);
    else
        fuzzPlans<double>(input);
}

}  // namespace orvgen::test::fuzz
