// One level of the recursion of an odd-frequency transform: inner transforms into the scratch, then
// the join of their results.
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

Env7* FAMILY(env7___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t lengthAgain, std::int32_t inStride,
                            std::int32_t scratchLength, std::int32_t outStride) {
    Env7* node = placeNode<Env7>(memory, arena, FAMILY(env7___del__), FAMILY(env7_plan));
    node->children = makeList(arena);
    node->joinRole = makeList(arena);
    node->innerRole = makeList(arena);
    node->scratch = nullptr;
    node->active = 0;
    node->n = n;
    node->r = 0;
    node->length = length;
    node->lengthAgain = lengthAgain;
    node->inStride = inStride;
    node->scratchLength = scratchLength;
    node->outStride = outStride;
    return node;
}

std::int32_t FAMILY(env7_plan)(NodeHeader* header) {
    Env7* node = static_cast<Env7*>(header);
    Arena* arena = node->arena;
    node->active = 1;
    if (divisorsIntNonTriv(&node->r, node->n / 2) != planned) {
        return refused;
    }
    const std::int32_t n = node->n;
    const std::int32_t r = node->r;

    void* joinMemory = orvgArenaMalloc(arena, sizeof(Env8));
    void* frequencyMemory = orvgArenaMalloc(arena, sizeof(EnvLambda));
    NodeHeader* frequency =
        EnvList_add(node->children, FAMILY(envlambda___init__)(frequencyMemory, arena, n, r));
    const Env8Sizes sizes{.r = r,
                          .length = node->length,
                          .stride = node->outStride,
                          .blockStride = 2 * r * node->outStride,
                          .m = n / (2 * r),
                          .lengthAgain = node->length,
                          .half = n / 2,
                          .last = n - 1,
                          .outStride = node->outStride,
                          .innerN = n / r};
    NodeHeader* join = EnvList_add(
        node->joinRole,
        EnvList_add(node->children, FAMILY(env8___init__)(joinMemory, arena, &sizes, frequency)));
    if (join->plan(join) != planned) {
        return refused;
    }

    void* innerMemory = orvgArenaMalloc(arena, sizeof(Env9));
    NodeHeader* inner = EnvList_add(
        node->innerRole,
        EnvList_add(node->children,
                    FAMILY(env9___init__)(innerMemory, arena, n / r, node->length, node->length,
                                          r * node->inStride, node->inStride, r, node->length,
                                          r * node->outStride, node->outStride)));
    if (inner->plan(inner) != planned) {
        return refused;
    }

    node->scratch = takeElements(arena, node->scratchLength);
    return planned;
}

void FAMILY(env7___del__)(NodeHeader* header) {
    Env7* node = static_cast<Env7*>(header);
    Arena* arena = node->arena;
    orvgArenaFree(arena, node->scratch, elementBytes(node->scratchLength));
    dropList(arena, node->joinRole);
    dropList(arena, node->innerRole);
    dropChildren(arena, node->children);
}

OrvStatus FAMILY(env7_compute)(const Env7* node, Real* dst, const Real* src, std::int32_t a,
                               std::int32_t b, std::int32_t c) {
    if (node->active != 1) {
        return orvErrPlan;
    }
    const Env9* inner = static_cast<const Env9*>(EnvList_get(node->innerRole, 0));
    const OrvStatus status = FAMILY(env9_compute)(inner, node->scratch, src, a, b, c);
    if (status != orvOk) {
        return status;
    }
    const Env8* join = static_cast<const Env8*>(EnvList_get(node->joinRole, 0));
    return FAMILY(env8_compute)(join, dst, node->scratch, c, c);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
