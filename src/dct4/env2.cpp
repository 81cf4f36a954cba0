// The wrapper of the second stage. It runs nothing itself: the plan looks through it.
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

namespace {

EnvfSplit* placeSplit(void* memory, Arena* arena, std::int32_t blockLength, std::int32_t groups,
                      const NodeHeader* inner) {
    EnvfSplit* split =
        placeFunction<EnvfSplit>(memory, arena, FAMILY(envfsplit___del__), FAMILY(envfsplit_at));
    split->blockLength = blockLength;
    split->groups = groups;
    split->inner = inner;
    return split;
}

Env4* placeKernel(void* memory, Arena* arena, const Env2& stage, const NodeHeader* twiddle) {
    Env4* kernel = placeNode<Env4>(memory, arena, FAMILY(env4___del__), FAMILY(env4_plan));
    kernel->children = makeList(arena);
    kernel->table = nullptr;
    kernel->rule = 0;
    kernel->r = stage.r;
    kernel->length = stage.length;
    kernel->blockLength = stage.blockLength;
    kernel->groupStride = lanes * stage.blockLength;
    kernel->groups = stage.m / lanes;
    kernel->lengthAgain = stage.lengthAgain;
    kernel->mirror = stage.mirror;
    kernel->n = stage.n;
    kernel->twiddle = twiddle;
    return kernel;
}

}  // namespace

extern "C" {

Env2* FAMILY(env2___init__)(void* memory, Arena* arena, std::int32_t r, std::int32_t length,
                            std::int32_t blockLength, std::int32_t m, std::int32_t lengthAgain,
                            std::int32_t mirror, std::int32_t n, const NodeHeader* twiddle) {
    Env2* node = placeNode<Env2>(memory, arena, FAMILY(env2___del__), FAMILY(env2_plan));
    node->children = makeList(arena);
    node->kernelRole = makeList(arena);
    node->reserved = nullptr;
    node->active = 0;
    node->r = r;
    node->length = length;
    node->blockLength = blockLength;
    node->m = m;
    node->lengthAgain = lengthAgain;
    node->mirror = mirror;
    node->n = n;
    node->twiddle = twiddle;
    return node;
}

std::int32_t FAMILY(env2_plan)(NodeHeader* header) {
    Env2* node = static_cast<Env2*>(header);
    Arena* arena = node->arena;
    if (node->m % lanes != 0) {
        return refused;
    }
    node->active = 1;
    void* splitMemory = orvgArenaMalloc(arena, sizeof(EnvfSplit));
    NodeHeader* split = EnvList_add(
        node->children,
        placeSplit(splitMemory, arena, node->blockLength, node->m / lanes, node->twiddle));
    void* kernelMemory = orvgArenaMalloc(arena, sizeof(Env4));
    NodeHeader* kernel =
        EnvList_add(node->kernelRole,
                    EnvList_add(node->children, placeKernel(kernelMemory, arena, *node, split)));
    return kernel->plan(kernel);
}

void FAMILY(env2___del__)(NodeHeader* header) {
    Env2* node = static_cast<Env2*>(header);
    Arena* arena = node->arena;
    orvgArenaFree(arena, node->reserved, 0);
    dropList(arena, node->kernelRole);
    dropChildren(arena, node->children);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
