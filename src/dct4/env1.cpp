// The top node: radix, the two stages, the scratch between them.
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

namespace {

// A multiple of the length as the 32-bit integer of a record. Beyond the lengths that are sized
// correctly it wraps, as the sizing pass does.
std::int32_t wrapped(std::int64_t value) { return static_cast<std::int32_t>(value); }

}  // namespace

extern "C" {

Env1* FAMILY(env1___init__)(void* memory, Arena* arena, std::int32_t length) {
    Env1* node = placeNode<Env1>(memory, arena, FAMILY(env1___del__), FAMILY(env1_plan));
    node->children = makeList(arena);
    node->stageTwoRole = makeList(arena);
    node->stageOneRole = makeList(arena);
    node->scratch = nullptr;
    node->rule = 0;
    node->length = length;
    return node;
}

std::int32_t FAMILY(env1_plan)(NodeHeader* header) {
    Env1* node = static_cast<Env1*>(header);
    Arena* arena = node->arena;
    const std::int32_t length = node->length;
    node->rule = ruleOfLength(length);
    if (node->rule != treeRule) {
        node->scratch = nullptr;
        return planned;
    }
    if (divisorsIntNonTriv(&node->r, length / 2) != planned) {
        return refused;
    }
    const std::int32_t r = node->r;
    const std::int32_t n = length / r;
    const std::int32_t m = length / (2 * r);
    const std::int32_t mirror = wrapped(2 * std::int64_t{length} - 1);

    void* stageTwoMemory = orvgArenaMalloc(arena, sizeof(Env2));
    void* twiddleMemory = orvgArenaMalloc(arena, sizeof(EnvfCompose));
    NodeHeader* twiddle =
        EnvList_add(node->children,
                    FAMILY(envfCompose___init__)(twiddleMemory, arena, 2 * r,
                                                 wrapped(8 * std::int64_t{length}), m, r, 2 * r));
    NodeHeader* stageTwo = EnvList_add(
        node->stageTwoRole,
        EnvList_add(node->children, FAMILY(env2___init__)(stageTwoMemory, arena, r, length, 2 * r,
                                                          m, length, mirror, n, twiddle)));
    if (stageTwo->plan(stageTwo) != planned) {
        return refused;
    }

    void* stageOneMemory = orvgArenaMalloc(arena, sizeof(Env3));
    NodeHeader* stageOne = EnvList_add(
        node->stageOneRole,
        EnvList_add(node->children, FAMILY(env3___init__)(stageOneMemory, arena, n, length, mirror,
                                                          2 * r, r, length, r)));
    if (stageOne->plan(stageOne) != planned) {
        return refused;
    }

    node->scratch = takeElements(arena, length);
    return planned;
}

void FAMILY(env1___del__)(NodeHeader* header) {
    Env1* node = static_cast<Env1*>(header);
    Arena* arena = node->arena;
    if (node->rule == treeRule) {
        orvgArenaFree(arena, node->scratch, elementBytes(node->length));
    } else if (node->rule >= 1 && node->rule < treeRule) {
        orvgArenaFree(arena, node->scratch, 0);
    }
    dropList(arena, node->stageTwoRole);
    dropList(arena, node->stageOneRole);
    dropChildren(arena, node->children);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
