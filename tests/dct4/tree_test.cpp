// SPDX-License-Identifier: MIT
// The tree of a plan: its shape, the fields of its nodes, who owns whom.
#include "dct4/plan.h"

namespace orvgen::test::dct4 {
namespace {

TEST(Dct4Tree, HasTheShapeOfTheTable) {
    for (const DataRow& row : table("trees").rows()) {
        const auto N = static_cast<std::int32_t>(row.integer("length"));
        Plan plan(N);
        Env1* top = plan.top();
        EXPECT_EQ(top->length, N);
        EXPECT_EQ(top->rule, row.integer("rule")) << N;
        if (row.integer("rule") != treeRule) {
            EXPECT_EQ(top->scratch, nullptr);
            EXPECT_EQ(EnvList_get(top->children, 0), nullptr);
            EXPECT_EQ(EnvList_get(top->stageOneRole, 0), nullptr);
            EXPECT_EQ(EnvList_get(top->stageTwoRole, 0), nullptr);
            continue;
        }
        EXPECT_EQ(top->r, row.integer("r")) << N;
        EXPECT_EQ(plan.env2()->m, row.integer("m")) << N;
        EXPECT_EQ(plan.env5()->n, row.integer("n")) << N;
        EXPECT_EQ(plan.env4()->rule, row.integer("env4")) << N;
        EXPECT_EQ(plan.env5()->rule, row.integer("env5")) << N;
        const std::vector<Env7*> levels = plan.levels();
        std::vector<std::vector<long>> expected, found;
        for (const char* column : {"level1", "level2"}) {
            if (!row.empty(column)) expected.push_back(row.integers(column));
        }
        for (Env7* level : levels) {
            const Env8* join = Plan::child<Env8>(level->joinRole);
            const Env9* inner = Plan::child<Env9>(level->innerRole);
            found.push_back({level->r, join->m, inner->n, join->rule, inner->rule});
        }
        EXPECT_EQ(found, expected) << N;
    }
}

void expectHeader(const NodeHeader* node, std::int32_t size, const Arena* arena) {
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->size, size);
    EXPECT_EQ(node->arena, arena);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(node) % 32, 0U);
}

template <class Node>
void expectOperations(const Node* node) {
    EXPECT_EQ(node->plan, Operations<Node>::plan);
    EXPECT_EQ(node->destructor, Operations<Node>::del);
}
template <class Object>
void expectFunctionObject(const NodeHeader* object) {
    EXPECT_EQ(object->at, Operations<Object>::at);
    EXPECT_EQ(object->destructor, Operations<Object>::del);
}

// The second stage: its twiddles are the whole's angles, composed and split.
void expectStageTwo(Plan& plan, const NodeHeader* compose) {
    const Arena* arena = plan.block.arena();
    expectHeader(plan.env2(), 96, arena);
    expectOperations(plan.env2());
    const NodeHeader* split = EnvList_get(plan.env2()->children, 0);
    expectHeader(split, 48, arena);
    expectFunctionObject<EnvfSplit>(split);
    EXPECT_EQ(static_cast<const EnvfSplit*>(split)->inner, compose);
    EXPECT_EQ(EnvList_get(plan.env2()->children, 1), plan.env4());
    EXPECT_EQ(plan.env2()->children->next->next, nullptr);
    EXPECT_EQ(plan.env2()->twiddle, compose);
    EXPECT_EQ(plan.env2()->reserved, nullptr);

    expectHeader(plan.env4(), 96, arena);
    expectOperations(plan.env4());
    EXPECT_EQ(plan.env4()->twiddle, split);
    EXPECT_EQ(plan.env4()->children->value, nullptr);
}

void expectStageOne(Plan& plan) {
    const Arena* arena = plan.block.arena();
    expectHeader(plan.env3(), 88, arena);
    expectOperations(plan.env3());
    EXPECT_EQ(plan.env3()->reserved, nullptr);
    EXPECT_EQ(EnvList_get(plan.env3()->children, 0), plan.env5());
    EXPECT_EQ(plan.env3()->children->next, nullptr);

    expectHeader(plan.env5(), 88, arena);
    expectOperations(plan.env5());
    EXPECT_EQ(plan.env5()->reserved, nullptr);
}

// A recursion level; returns what its inner transform owns: the next level, or nothing.
const NodeHeader* expectLevel(Plan& plan, Env7* level) {
    const Arena* arena = plan.block.arena();
    expectHeader(level, 96, arena);
    expectOperations(level);
    Env8* join = Plan::child<Env8>(level->joinRole);
    Env9* inner = Plan::child<Env9>(level->innerRole);
    const NodeHeader* frequency = EnvList_get(level->children, 0);
    expectHeader(frequency, 40, arena);
    expectFunctionObject<EnvLambda>(frequency);
    EXPECT_EQ(EnvList_get(level->children, 1), join);
    EXPECT_EQ(EnvList_get(level->children, 2), inner);
    EXPECT_EQ(level->children->next->next->next, nullptr);
    expectHeader(join, 104, arena);
    expectOperations(join);
    EXPECT_EQ(join->frequency, frequency);
    EXPECT_EQ(join->children->value, nullptr);
    expectHeader(inner, 96, arena);
    expectOperations(inner);
    EXPECT_EQ(inner->reserved, nullptr);
    const NodeHeader* owned = EnvList_get(inner->children, 0);
    EXPECT_EQ(owned, EnvList_get(inner->recursionRole, 0));
    return owned;
}

// Children in the order of creation, each with its own operations; roles borrow them.
TEST(Dct4Tree, OwnsByTheChildrenListsAlone) {
    for (const std::int32_t N : treeLengths()) {
        Plan plan(N);
        const Arena* arena = plan.block.arena();
        Env1* top = plan.top();
        expectHeader(top, 80, arena);
        expectOperations(top);
        const NodeHeader* compose = EnvList_get(top->children, 0);
        expectHeader(compose, 56, arena);
        expectFunctionObject<EnvfCompose>(compose);
        EXPECT_EQ(EnvList_get(top->children, 1), plan.env2());
        EXPECT_EQ(EnvList_get(top->children, 2), plan.env3());
        EXPECT_EQ(top->children->next->next->next, nullptr);
        EXPECT_EQ(top->stageTwoRole->next, nullptr);
        EXPECT_EQ(top->stageOneRole->next, nullptr);

        expectStageTwo(plan, compose);
        expectStageOne(plan);
        const NodeHeader* owned = EnvList_get(plan.env5()->children, 0);
        EXPECT_EQ(owned, EnvList_get(plan.env5()->recursionRole, 0));
        for (Env7* level : plan.levels()) {
            EXPECT_EQ(owned, level);
            owned = expectLevel(plan, level);
        }
        EXPECT_EQ(owned, nullptr);
    }
}

TEST(Dct4Tree, HoldsTheIntegersOfItsLayout) {
    for (const std::int32_t N : treeLengths()) {
        Plan plan(N);
        const std::int32_t r = plan.top()->r, m = N / (2 * r), n = N / r;
        const Env2& env2 = *plan.env2();
        EXPECT_EQ((std::vector{env2.active, env2.r, env2.length, env2.unused1, env2.m, env2.unused2,
                               env2.unused3, env2.unused4}),
                  (std::vector{1, r, N, 2 * r, m, N, 2 * N - 1, n}));
        const Env3& env3 = *plan.env3();
        EXPECT_EQ((std::vector{env3.active, env3.n, env3.length, env3.unused1, env3.unused2, env3.r,
                               env3.unused3, env3.unused4}),
                  (std::vector{1, n, N, 2 * N - 1, 2 * r, r, N, r}));
        const Env4& env4 = *plan.env4();
        EXPECT_EQ((std::vector{env4.r, env4.unused1, env4.unused2, env4.unused3, env4.groups,
                               env4.unused4, env4.mirror, env4.n}),
                  (std::vector{r, N, 2 * r, lanes * 2 * r, m / lanes, N, 2 * N - 1, n}));
        const Env5& env5 = *plan.env5();
        EXPECT_EQ((std::vector{env5.n, env5.length, env5.mirror, env5.blockLength, env5.groups,
                               env5.unused1, env5.r}),
                  (std::vector{n, N, 2 * N - 1, 2 * r, r / lanes, N, r}));
        const auto& compose = *static_cast<EnvfCompose*>(EnvList_get(plan.top()->children, 0));
        EXPECT_EQ((std::vector{compose.unused1, compose.eightLengths, compose.unused2, compose.r,
                               compose.step}),
                  (std::vector{2 * r, 8 * N, m, r, 2 * r}));
        const auto& split = *static_cast<EnvfSplit*>(EnvList_get(plan.env2()->children, 0));
        EXPECT_EQ((std::vector{split.unused1, split.unused2}), (std::vector{2 * r, m / lanes}));

        std::int32_t size = n, in = 2 * r, out = r;
        for (Env7* level : plan.levels()) {
            const std::int32_t ri = level->r, mi = size / (2 * ri), ni = size / ri;
            EXPECT_EQ((std::vector{level->active, level->n, level->length, level->unused1,
                                   level->inStride, level->scratchLength, level->outStride}),
                      (std::vector{1, size, N, N, in, N, out}));
            const Env8& join = *Plan::child<Env8>(level->joinRole);
            EXPECT_EQ(
                (std::vector{join.r, join.unused1, join.stride, join.blockStride, join.m,
                             join.unused2, join.unused3, join.unused4, join.unused5, join.unused6}),
                (std::vector{ri, N, out, 2 * ri * out, mi, N, size / 2, size - 1, out, ni}));
            const Env9& inner = *Plan::child<Env9>(level->innerRole);
            EXPECT_EQ((std::vector{inner.n, inner.length, inner.unused1, inner.inStride,
                                   inner.sequenceStride, inner.count, inner.unused2,
                                   inner.outStride, inner.sequenceOutStride}),
                      (std::vector{ni, N, N, ri * in, in, ri, N, ri * out, out}));
            const auto& lambda = *static_cast<EnvLambda*>(EnvList_get(level->children, 0));
            EXPECT_EQ((std::vector{lambda.n, lambda.r}), (std::vector{size, ri}));
            size = ni, in *= ri, out *= ri;
        }
    }
}

// Scratch arrays and tables lie inside the block, apart from each other, on 32-byte boundaries; the
// top scratch comes last.
TEST(Dct4Tree, LaysItsArraysOutInTheBlock) {
    for (const std::int32_t N : treeLengths()) {
        Plan plan(N);
        const auto bytes = static_cast<std::uintptr_t>(N) * sizeof(Real);
        std::vector<std::pair<std::uintptr_t, std::uintptr_t>> arrays;
        const auto add = [&](const Real* start, std::uintptr_t size) {
            const auto address = reinterpret_cast<std::uintptr_t>(start);
            EXPECT_EQ(address % 32, 0U) << N;
            arrays.emplace_back(address, address + size);
        };
        add(plan.env4()->table, bytes);
        for (Env7* level : plan.levels()) {
            add(level->scratch, bytes);
            const Env8* join = Plan::child<Env8>(level->joinRole);
            add(join->table, static_cast<std::uintptr_t>(join->m) *
                                 (2 * static_cast<std::uintptr_t>(join->r) - 2) * 16);
        }
        add(plan.top()->scratch, bytes);
        const std::uintptr_t last = arrays.back().first;
        std::sort(arrays.begin(), arrays.end());
        EXPECT_EQ(arrays.back().first, last);
        EXPECT_EQ(arrays.back().second, plan.block.arena()->bump());
        for (std::size_t i = 1; i < arrays.size(); ++i) {
            EXPECT_LE(arrays[i - 1].second, arrays[i].first);
        }
        EXPECT_GT(arrays.front().first, reinterpret_cast<std::uintptr_t>(plan.top()));
    }
}

}  // namespace
}  // namespace orvgen::test::dct4
