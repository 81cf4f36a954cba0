// The second stage: the node of its kernel, and the table of twiddles.
#include "dct4/operations.h"
#include "dct4/radix.h"
#include "dct4/visitingorder.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

std::int32_t FAMILY(env4_plan)(NodeHeader* header) {
    Env4* node = static_cast<Env4*>(header);
    node->rule = ruleOfStageTwo(node->r);
    if (node->rule == 0) {
        return refused;
    }
    // cos g(p, c) and sin g(p, c) of the blocks c = lanes * i + l, in the order in which the kernel
    // takes the p: it reads the table straight through.
    const std::int32_t vectors = node->groups * 2 * node->r;
    node->table = takeElements(node->arena, vectors * lanes);
    Real* entry = node->table;
    for (std::int32_t i = 0; i < node->groups; ++i) {
        for (std::int32_t position = 0; position < node->r; ++position) {
            const std::int32_t p = visitingOrder(node->r, position);
            for (std::int32_t component = 0; component < 2; ++component) {
                for (std::int32_t l = 0; l < lanes; ++l) {
                    *entry++ = static_cast<Real>(
                        owng_TFunc_IIIR_at(node->twiddle, i, l, 2 * p + component));
                }
            }
        }
    }
    return planned;
}

void FAMILY(env4___del__)(NodeHeader* header) {
    Env4* node = static_cast<Env4*>(header);
    Arena* arena = node->arena;
    if (node->rule != 0) {
        orvgArenaFree(arena, node->table, elementBytes(node->groups * 2 * node->r * lanes));
    } else {
        orvgArenaFree(arena, node->table, 0);
    }
    dropChildren(arena, node->children);
}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
