// The wrapper of the first stage. It runs nothing itself: the plan looks through it.
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

Env3* FAMILY(env3___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t mirror, std::int32_t blockLength, std::int32_t r,
                            std::int32_t lengthAgain, std::int32_t rAgain) {
    Env3* node = placeNode<Env3>(memory, arena, FAMILY(env3___del__), FAMILY(env3_plan));
    node->children = makeList(arena);
    node->transformRole = makeList(arena);
    node->reserved = nullptr;
    node->active = 0;
    node->n = n;
    node->length = length;
    node->mirror = mirror;
    node->blockLength = blockLength;
    node->r = r;
    node->lengthAgain = lengthAgain;
    node->rAgain = rAgain;
    return node;
}

std::int32_t FAMILY(env3_plan)(NodeHeader* header) {
    Env3* node = static_cast<Env3*>(header);
    Arena* arena = node->arena;
    if (node->r % lanes != 0) {
        return refused;
    }
    node->active = 1;
    void* memory = orvgArenaMalloc(arena, sizeof(Env5));
    NodeHeader* transform = EnvList_add(
        node->transformRole,
        EnvList_add(node->children, FAMILY(env5___init__)(memory, arena, node->n, node->length,
                                                          node->mirror, node->blockLength,
                                                          node->r / lanes, node->length, node->r)));
    return transform->plan(transform);
}

void FAMILY(env3___del__)(NodeHeader* header) {
    Env3* node = static_cast<Env3*>(header);
    Arena* arena = node->arena;
    orvgArenaFree(arena, node->reserved, 0);
    dropList(arena, node->transformRole);
    dropChildren(arena, node->children);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
