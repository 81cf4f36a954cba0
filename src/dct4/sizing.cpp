// The sizing pass: what a plan of a length will cost, on integers alone.
//
// Sums are formed in 64 bits and handed on in 32, and a negative result is a failure. A length
// whose true sum reaches 2^31 therefore fails, and beyond 2^32 the sum wraps: this is the
// arithmetic of the interface, not an oversight.
//
// Every EnvList_add is charged a list node here, whereas the first element of a list goes into its
// head, which is charged already: the pass charges more than the build takes.
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

namespace {

using Bytes = std::int64_t;

Bytes aligned(Bytes size) {
    return static_cast<Bytes>(orvgAlignSize32Bytes(static_cast<std::uint64_t>(size)));
}

template <class Record>
Bytes record() {
    return aligned(sizeof(Record));
}

Bytes heads(Bytes count) { return count * aligned(sizeof(EnvList)); }

Bytes slots(std::int32_t count) { return EnvList_add_mem(count); }

Bytes elements(std::int32_t count) { return aligned(Bytes{count} * Bytes{sizeof(Real)}); }

Bytes vectors(Bytes count) { return aligned(count * vectorBytes); }

std::int32_t handOn(Bytes sum) { return static_cast<std::int32_t>(sum); }

// env5 and env9 differ in their record only.
template <class Record>
std::int32_t oddFrequencyMem(std::int32_t n, std::int32_t length) {
    Bytes sum = aligned(0) + record<Record>() + heads(2);
    if (ruleOfOddFrequency(n) == recursionRule) {
        const std::int32_t recursion = FAMILY(env7_mem)(n, length);
        if (recursion < 0) {
            return recursion;
        }
        sum += recursion + slots(2);
    }
    return handOn(sum);
}

}  // namespace

extern "C" {

std::int32_t FAMILY(env1_mem)(std::int32_t length) {
    if (ruleOfLength(length) != treeRule) {
        return handOn(aligned(0) + record<Env1>() + heads(3));
    }
    std::int32_t r;
    if (divisorsIntNonTriv(&r, length / 2) != planned) {
        return refused;
    }
    const std::int32_t stageTwo = FAMILY(env2_mem)(r, length);
    if (stageTwo < 0) {
        return stageTwo;
    }
    const std::int32_t stageOne = FAMILY(env3_mem)(length / r, length, r);
    if (stageOne < 0) {
        return stageOne;
    }
    return handOn(Bytes{stageTwo} + stageOne + elements(length) + record<Env1>() + heads(3) +
                  slots(2) + record<EnvfCompose>() + slots(1) + slots(2));
}

std::int32_t FAMILY(env2_mem)(std::int32_t r, std::int32_t length) {
    const std::int32_t m = length / (2 * r);
    if (m % lanes != 0 || ruleOfStageTwo(r) == 0) {
        return refused;
    }
    return handOn(vectors(Bytes{m / lanes} * 2 * r) + record<Env4>() + heads(1) + aligned(0) +
                  record<Env2>() + heads(2) + slots(2) + record<EnvfSplit>() + slots(1));
}

std::int32_t FAMILY(env3_mem)(std::int32_t n, std::int32_t length, std::int32_t r) {
    if (r % lanes != 0) {
        return refused;
    }
    const std::int32_t transform = FAMILY(env5_mem)(n, length);
    if (transform < 0) {
        return transform;
    }
    return handOn(Bytes{transform} + aligned(0) + record<Env3>() + heads(2) + slots(2));
}

std::int32_t FAMILY(env5_mem)(std::int32_t n, std::int32_t length) {
    return oddFrequencyMem<Env5>(n, length);
}

std::int32_t FAMILY(env7_mem)(std::int32_t n, std::int32_t length) {
    std::int32_t r;
    if (divisorsIntNonTriv(&r, n / 2) != planned || ruleOfPower(r) == 0) {
        return refused;
    }
    const std::int32_t inner = FAMILY(env9_mem)(n / r, length);
    if (inner < 0) {
        return inner;
    }
    const std::int32_t m = n / (2 * r);
    return handOn(vectors(Bytes{m} * (2 * r - 2)) + record<Env8>() + heads(1) + inner +
                  elements(length) + record<Env7>() + heads(3) + slots(2) + record<EnvLambda>() +
                  slots(1) + slots(2));
}

std::int32_t FAMILY(env9_mem)(std::int32_t n, std::int32_t length) {
    return oddFrequencyMem<Env9>(n, length);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
