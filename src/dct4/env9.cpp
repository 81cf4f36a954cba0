// The inner transforms of a recursion level: r' sequences of n' points.
#include "dct4/oddfrequency.h"
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

Env9* FAMILY(env9___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t lengthAgain, std::int32_t inStride,
                            std::int32_t sequenceStride, std::int32_t count,
                            std::int32_t lengthOnceMore, std::int32_t outStride,
                            std::int32_t sequenceOutStride) {
    Env9* node = placeNode<Env9>(memory, arena, FAMILY(env9___del__), FAMILY(env9_plan));
    node->children = makeList(arena);
    node->recursionRole = makeList(arena);
    node->reserved = nullptr;
    node->rule = 0;
    node->n = n;
    node->length = length;
    node->lengthAgain = lengthAgain;
    node->inStride = inStride;
    node->sequenceStride = sequenceStride;
    node->count = count;
    node->lengthOnceMore = lengthOnceMore;
    node->outStride = outStride;
    node->sequenceOutStride = sequenceOutStride;
    return node;
}

std::int32_t FAMILY(env9_plan)(NodeHeader* header) {
    Env9* node = static_cast<Env9*>(header);
    Arena* arena = node->arena;
    node->rule = ruleOfOddFrequency(node->n);
    if (node->rule != recursionRule) {
        return planned;
    }
    void* memory = orvgArenaMalloc(arena, sizeof(Env7));
    NodeHeader* recursion = EnvList_add(
        node->recursionRole,
        EnvList_add(node->children,
                    FAMILY(env7___init__)(memory, arena, node->n, node->length, node->length,
                                          node->inStride, node->length, node->outStride)));
    return recursion->plan(recursion);
}

void FAMILY(env9___del__)(NodeHeader* header) {
    Env9* node = static_cast<Env9*>(header);
    Arena* arena = node->arena;
    orvgArenaFree(arena, node->reserved, 0);
    dropList(arena, node->recursionRole);
    dropChildren(arena, node->children);
}

OrvStatus FAMILY(env9_compute)(const Env9* node, Real* dst, const Real* src, std::int32_t a,
                               std::int32_t b, std::int32_t c) {
    if (node->rule == recursionRule) {
        const Env7* recursion = static_cast<const Env7*>(EnvList_get(node->recursionRole, 0));
        for (std::int32_t i = 0; i < node->count; ++i) {
            const OrvStatus status = FAMILY(env7_compute)(
                recursion, dst, src, a + i * node->sequenceStride, b - 2 * i * node->sequenceStride,
                c + i * node->sequenceOutStride);
            if (status != orvOk) {
                return status;
            }
        }
        return orvOk;
    }
    // The mirrored samples of the first sequence run down from position a + b.
    const SequenceWalk walk{.src = src,
                            .start = a,
                            .mirrored = std::ptrdiff_t{a} + b,
                            .sampleStride = node->inStride,
                            .dst = dst + c,
                            .componentStride = node->outStride,
                            .count = node->count,
                            .sourceStep = node->sequenceStride,
                            .dstStep = node->sequenceOutStride};
    return oddFrequencyKernel(node->rule, walk);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
