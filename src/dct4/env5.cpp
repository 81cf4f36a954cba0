// The first stage: r odd-frequency transforms of n points, the samples taken from the input.
#include "dct4/oddfrequency.h"
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

Env5* FAMILY(env5___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t mirror, std::int32_t blockLength, std::int32_t groups,
                            std::int32_t lengthAgain, std::int32_t r) {
    Env5* node = placeNode<Env5>(memory, arena, FAMILY(env5___del__), FAMILY(env5_plan));
    node->children = makeList(arena);
    node->recursionRole = makeList(arena);
    node->reserved = nullptr;
    node->rule = 0;
    node->n = n;
    node->length = length;
    node->mirror = mirror;
    node->blockLength = blockLength;
    node->groups = groups;
    node->lengthAgain = lengthAgain;
    node->r = r;
    return node;
}

std::int32_t FAMILY(env5_plan)(NodeHeader* header) {
    Env5* node = static_cast<Env5*>(header);
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
                                          node->blockLength, node->length, node->r)));
    return recursion->plan(recursion);
}

void FAMILY(env5___del__)(NodeHeader* header) {
    Env5* node = static_cast<Env5*>(header);
    Arena* arena = node->arena;
    orvgArenaFree(arena, node->reserved, 0);
    dropList(arena, node->recursionRole);
    dropChildren(arena, node->children);
}

OrvStatus FAMILY(env5_compute)(const Env5* node, Real* dst, const Real* src) {
    if (node->rule == recursionRule) {
        const Env7* recursion = static_cast<const Env7*>(EnvList_get(node->recursionRole, 0));
        for (std::int32_t i = 0; i < node->groups; ++i) {
            const std::int32_t p = lanes * i;
            const OrvStatus status =
                FAMILY(env7_compute)(recursion, dst, src, p, node->mirror - 2 * p, p);
            if (status != orvOk) {
                return status;
            }
        }
        return orvOk;
    }
    const SequenceWalk walk{.src = src,
                            .start = 0,
                            .mirrored = node->mirror,
                            .sampleStride = node->blockLength,
                            .dst = dst,
                            .componentStride = node->r,
                            .count = node->groups,
                            .sourceStep = lanes,
                            .dstStep = lanes};
    return oddFrequencyKernel(node->rule, walk);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
