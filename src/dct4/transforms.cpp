#include "dct4/transforms.h"

#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

void initTransforms(TransformNode* node, Arena* arena, std::int32_t n, std::int32_t length) {
    node->children = makeList(arena);
    node->recursionRole = makeList(arena);
    node->reserved = nullptr;
    node->rule = 0;
    node->n = n;
    node->length = length;
}

std::int32_t planTransforms(TransformNode* node, std::int32_t inStride, std::int32_t outStride) {
    node->rule = ruleOfOddFrequency(node->n);
    if (node->rule != recursionRule) {
        return planned;
    }
    void* memory = orvgArenaMalloc(node->arena, sizeof(Env7));
    NodeHeader* recursion = EnvList_add(
        node->recursionRole,
        EnvList_add(node->children,
                    FAMILY(env7___init__)(memory, node->arena, node->n, node->length, node->length,
                                          inStride, node->length, outStride)));
    return recursion->plan(recursion);
}

void dropTransforms(TransformNode* node) {
    orvgArenaFree(node->arena, node->reserved, 0);
    dropList(node->arena, node->recursionRole);
    dropChildren(node->arena, node->children);
}

OrvStatus runTransforms(const TransformNode& node, const SequenceWalk& walk) {
    if (node.rule != recursionRule) {
        return oddFrequencyKernel(node.rule, walk);
    }
    const Env7* recursion = static_cast<const Env7*>(EnvList_get(node.recursionRole, 0));
    for (std::int32_t i = 0; i < walk.count; ++i) {
        const OrvStatus status =
            FAMILY(env7_compute)(recursion, walk.dst, walk.src, walk.a + i * walk.sourceStep,
                                 walk.b - 2 * i * walk.sourceStep, walk.c + i * walk.dstStep);
        if (status != orvOk) {
            return status;
        }
    }
    return orvOk;
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
