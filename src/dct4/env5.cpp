// The first stage: r odd-frequency transforms of n points, the samples taken from the input.
#include "dct4/operations.h"
#include "dct4/radix.h"
#include "dct4/together.h"
#include "dct4/transforms.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

Env5* FAMILY(env5___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t mirror, std::int32_t blockLength, std::int32_t groups,
                            std::int32_t lengthAgain, std::int32_t r) {
    Env5* node = placeNode<Env5>(memory, arena, FAMILY(env5___del__), FAMILY(env5_plan));
    initTransforms(node, arena, n, length);
    node->mirror = mirror;
    node->blockLength = blockLength;
    node->groups = groups;
    node->lengthAgain = lengthAgain;
    node->r = r;
    return node;
}

std::int32_t FAMILY(env5_plan)(NodeHeader* header) {
    Env5* node = static_cast<Env5*>(header);
    return planTransforms(node, node->blockLength, node->r);
}

void FAMILY(env5___del__)(NodeHeader* header) { dropTransforms(static_cast<Env5*>(header)); }

// The groups of sequences start next to each other, in the input as in the results.
OrvStatus FAMILY(env5_compute)(const Env5* node, Real* dst, const Real* src) {
    const SequenceWalk walk{.src = src,
                            .dst = dst,
                            .a = 0,
                            .b = node->mirror,
                            .c = 0,
                            .sampleStride = node->blockLength,
                            .componentStride = node->r,
                            .count = node->groups,
                            .sourceStep = lanes,
                            .dstStep = lanes};
    if (node->rule == recursionRule && worthTogether(node->r, node->length)) {
        const Env7* recursion = static_cast<const Env7*>(EnvList_get(node->recursionRole, 0));
        return computeTogether(recursion, walk);
    }
    return runTransforms(*node, walk);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
