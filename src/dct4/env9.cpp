// The inner transforms of a recursion level: r' sequences of n' points.
#include "dct4/operations.h"
#include "dct4/transforms.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

Env9* FAMILY(env9___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t lengthAgain, std::int32_t inStride,
                            std::int32_t sequenceStride, std::int32_t count,
                            std::int32_t lengthOnceMore, std::int32_t outStride,
                            std::int32_t sequenceOutStride) {
    Env9* node = placeNode<Env9>(memory, arena, FAMILY(env9___del__), FAMILY(env9_plan));
    initTransforms(node, arena, n, length);
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
    return planTransforms(node, node->inStride, node->outStride);
}

void FAMILY(env9___del__)(NodeHeader* header) { dropTransforms(static_cast<Env9*>(header)); }

// One group of every sequence.
OrvStatus FAMILY(env9_compute)(const Env9* node, Real* dst, const Real* src, std::int32_t a,
                               std::int32_t b, std::int32_t c) {
    const SequenceWalk walk{.src = src,
                            .dst = dst,
                            .a = a,
                            .b = b,
                            .c = c,
                            .sampleStride = node->inStride,
                            .componentStride = node->outStride,
                            .count = node->count,
                            .sourceStep = node->sequenceStride,
                            .dstStep = node->sequenceOutStride};
    return runTransforms(*node, walk);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
