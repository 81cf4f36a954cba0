// The tree of a plan: its shape, the fields of its nodes, who owns whom, and every table value.
#include <cmath>

#include "dct4/plan.h"
#include "dct4/visitingorder.h"

namespace orvgen::test::dct4 {
namespace {

// cos or sin of pi x by the helpers' chain: product in binary64, rounded to the family's type.
Real ofPi(bool sine, Real x) {
    volatile double product = static_cast<double>(x) * 3.141592653589793;
    volatile Real angle = static_cast<Real>(product);
    const Real rounded = angle;
    return sine ? std::sin(rounded) : std::cos(rounded);
}

std::vector<std::int32_t> treeLengths() {
    std::vector<std::int32_t> lengths;
    for (const DataRow& row : table("trees").rows()) {
        if (row.integer("rule") == treeRule) {
            lengths.push_back(static_cast<std::int32_t>(row.integer("length")));
        }
    }
    return lengths;
}

TEST(Tree, HasTheShapeOfTheTable) {
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
            found.push_back({level->r, join->sizes.m, inner->n, join->rule, inner->rule});
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

// Children in the order of creation, each with its own operations; roles borrow them.
TEST(Tree, OwnsByTheChildrenListsAlone) {
    for (const std::int32_t N : treeLengths()) {
        Plan plan(N);
        const Arena* arena = plan.block.arena();
        Env1* top = plan.top();
        expectHeader(top, 80, arena);
        EXPECT_EQ(top->plan, FAMILY(env1_plan));
        EXPECT_EQ(top->destructor, FAMILY(env1___del__));
        const NodeHeader* compose = EnvList_get(top->children, 0);
        expectHeader(compose, 56, arena);
        EXPECT_EQ(compose->at, FAMILY(envfCompose_at));
        EXPECT_EQ(compose->destructor, FAMILY(envfCompose___del__));
        EXPECT_EQ(EnvList_get(top->children, 1), plan.env2());
        EXPECT_EQ(EnvList_get(top->children, 2), plan.env3());
        EXPECT_EQ(top->children->next->next->next, nullptr);
        EXPECT_EQ(top->stageTwoRole->next, nullptr);
        EXPECT_EQ(top->stageOneRole->next, nullptr);

        expectHeader(plan.env2(), 96, arena);
        EXPECT_EQ(plan.env2()->plan, FAMILY(env2_plan));
        EXPECT_EQ(plan.env2()->destructor, FAMILY(env2___del__));
        const NodeHeader* split = EnvList_get(plan.env2()->children, 0);
        expectHeader(split, 48, arena);
        EXPECT_EQ(split->at, FAMILY(envfsplit_at));
        EXPECT_EQ(split->destructor, FAMILY(envfsplit___del__));
        EXPECT_EQ(static_cast<const EnvfSplit*>(split)->inner, compose);
        EXPECT_EQ(EnvList_get(plan.env2()->children, 1), plan.env4());
        EXPECT_EQ(plan.env2()->children->next->next, nullptr);
        EXPECT_EQ(plan.env2()->twiddle, compose);
        EXPECT_EQ(plan.env2()->reserved, nullptr);

        expectHeader(plan.env4(), 96, arena);
        EXPECT_EQ(plan.env4()->plan, FAMILY(env4_plan));
        EXPECT_EQ(plan.env4()->destructor, FAMILY(env4___del__));
        EXPECT_EQ(plan.env4()->twiddle, split);
        EXPECT_EQ(plan.env4()->children->value, nullptr);

        expectHeader(plan.env3(), 88, arena);
        EXPECT_EQ(plan.env3()->plan, FAMILY(env3_plan));
        EXPECT_EQ(plan.env3()->destructor, FAMILY(env3___del__));
        EXPECT_EQ(plan.env3()->reserved, nullptr);
        EXPECT_EQ(EnvList_get(plan.env3()->children, 0), plan.env5());
        EXPECT_EQ(plan.env3()->children->next, nullptr);

        expectHeader(plan.env5(), 88, arena);
        EXPECT_EQ(plan.env5()->plan, FAMILY(env5_plan));
        EXPECT_EQ(plan.env5()->destructor, FAMILY(env5___del__));
        EXPECT_EQ(plan.env5()->reserved, nullptr);
        const NodeHeader* owned = EnvList_get(plan.env5()->children, 0);
        EXPECT_EQ(owned, EnvList_get(plan.env5()->recursionRole, 0));
        for (Env7* level : plan.levels()) {
            EXPECT_EQ(owned, level);
            expectHeader(level, 96, arena);
            EXPECT_EQ(level->plan, FAMILY(env7_plan));
            EXPECT_EQ(level->destructor, FAMILY(env7___del__));
            Env8* join = Plan::child<Env8>(level->joinRole);
            Env9* inner = Plan::child<Env9>(level->innerRole);
            const NodeHeader* frequency = EnvList_get(level->children, 0);
            expectHeader(frequency, 40, arena);
            EXPECT_EQ(frequency->at, FAMILY(envlambda_at));
            EXPECT_EQ(frequency->destructor, FAMILY(envlambda___del__));
            EXPECT_EQ(EnvList_get(level->children, 1), join);
            EXPECT_EQ(EnvList_get(level->children, 2), inner);
            EXPECT_EQ(level->children->next->next->next, nullptr);
            expectHeader(join, 104, arena);
            EXPECT_EQ(join->plan, FAMILY(env8_plan));
            EXPECT_EQ(join->destructor, FAMILY(env8___del__));
            EXPECT_EQ(join->frequency, frequency);
            EXPECT_EQ(join->children->value, nullptr);
            expectHeader(inner, 96, arena);
            EXPECT_EQ(inner->plan, FAMILY(env9_plan));
            EXPECT_EQ(inner->destructor, FAMILY(env9___del__));
            EXPECT_EQ(inner->reserved, nullptr);
            owned = EnvList_get(inner->children, 0);
            EXPECT_EQ(owned, EnvList_get(inner->recursionRole, 0));
        }
        EXPECT_EQ(owned, nullptr);
    }
}

TEST(Tree, HoldsTheIntegersOfItsConstructors) {
    for (const std::int32_t N : treeLengths()) {
        Plan plan(N);
        const std::int32_t r = plan.top()->r, m = N / (2 * r), n = N / r;
        const Env2& env2 = *plan.env2();
        EXPECT_EQ((std::vector{env2.active, env2.r, env2.length, env2.blockLength, env2.m,
                               env2.lengthAgain, env2.mirror, env2.n}),
                  (std::vector{1, r, N, 2 * r, m, N, 2 * N - 1, n}));
        const Env3& env3 = *plan.env3();
        EXPECT_EQ((std::vector{env3.active, env3.n, env3.length, env3.mirror, env3.blockLength,
                               env3.r, env3.lengthAgain, env3.rAgain}),
                  (std::vector{1, n, N, 2 * N - 1, 2 * r, r, N, r}));
        const Env4& env4 = *plan.env4();
        EXPECT_EQ((std::vector{env4.r, env4.length, env4.blockLength, env4.groupStride, env4.groups,
                               env4.lengthAgain, env4.mirror, env4.n}),
                  (std::vector{r, N, 2 * r, lanes * 2 * r, m / lanes, N, 2 * N - 1, n}));
        const Env5& env5 = *plan.env5();
        EXPECT_EQ((std::vector{env5.n, env5.length, env5.mirror, env5.blockLength, env5.groups,
                               env5.lengthAgain, env5.r}),
                  (std::vector{n, N, 2 * N - 1, 2 * r, r / lanes, N, r}));
        const auto& compose = *static_cast<EnvfCompose*>(EnvList_get(plan.top()->children, 0));
        EXPECT_EQ((std::vector{compose.blockLength, compose.eightLengths, compose.m, compose.r,
                               compose.step}),
                  (std::vector{2 * r, 8 * N, m, r, 2 * r}));
        const auto& split = *static_cast<EnvfSplit*>(EnvList_get(plan.env2()->children, 0));
        EXPECT_EQ((std::vector{split.blockLength, split.groups}), (std::vector{2 * r, m / lanes}));

        std::int32_t size = n, in = 2 * r, out = r;
        for (Env7* level : plan.levels()) {
            const std::int32_t ri = level->r, mi = size / (2 * ri), ni = size / ri;
            EXPECT_EQ((std::vector{level->active, level->n, level->length, level->lengthAgain,
                                   level->inStride, level->scratchLength, level->outStride}),
                      (std::vector{1, size, N, N, in, N, out}));
            const Env8Sizes& join = Plan::child<Env8>(level->joinRole)->sizes;
            EXPECT_EQ(
                (std::vector{join.r, join.length, join.stride, join.blockStride, join.m,
                             join.lengthAgain, join.half, join.last, join.outStride, join.innerN}),
                (std::vector{ri, N, out, 2 * ri * out, mi, N, size / 2, size - 1, out, ni}));
            const Env9& inner = *Plan::child<Env9>(level->innerRole);
            EXPECT_EQ((std::vector{inner.n, inner.length, inner.lengthAgain, inner.inStride,
                                   inner.sequenceStride, inner.count, inner.lengthOnceMore,
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
TEST(Tree, LaysItsArraysOutInTheBlock) {
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
            add(join->table, static_cast<std::uintptr_t>(join->sizes.m) *
                                 (2 * static_cast<std::uintptr_t>(join->sizes.r) - 2) * 16);
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

// Every element: numerator and denominator in the family's type, one division, the helper's chain.
TEST(Tables, OfTheSecondStage) {
    for (const std::int32_t N : treeLengths()) {
        Plan plan(N);
        const Env4& node = *plan.env4();
        const Real* entry = node.table;
        int wrong = 0;
        for (std::int32_t i = 0; i < node.groups; ++i) {
            for (std::int32_t position = 0; position < node.r; ++position) {
                const std::int32_t p = visitingOrder(node.r, position);
                for (const bool sine : {false, true}) {
                    for (std::int32_t l = 0; l < lanes; ++l, ++entry) {
                        const std::int32_t c = lanes * i + l;
                        volatile Real above = static_cast<Real>(2 * (2 * p + 1) * (2 * c + 1));
                        volatile Real below = static_cast<Real>(8 * N);
                        volatile Real quotient = above / below;
                        wrong += *entry != ofPi(sine, quotient);
                    }
                }
            }
        }
        EXPECT_EQ(wrong, 0) << N;
        EXPECT_EQ(entry - node.table, N);
    }
}

// The angles of a join's table in units of pi / n, in the order of the table, one cosine and one
// sine each: (multiplier k, frequency number d, remainder g).
struct Angle {
    std::int32_t k, d, g;
    std::int32_t units(std::int32_t m) const { return k * (2 * d + 1 + 4 * m * g); }
};

std::vector<Angle> joinAngles(std::int32_t r, std::int32_t m) {
    std::vector<Angle> angles;
    if (r <= 8) {
        for (std::int32_t d = 0; d < m; ++d) {
            for (std::int32_t k = 1; k < r; ++k) angles.push_back({k, d, 0});
        }
        return angles;
    }
    for (std::int32_t d = 0; d < m; ++d) {
        for (std::int32_t g = 0; g < r / 4; ++g) {
            for (std::int32_t k = 1; k <= 3; ++k) angles.push_back({k, d, g});
        }
    }
    for (std::int32_t d = 0; d < m; ++d) {
        for (std::int32_t k = 1; k < r / 4; ++k) angles.push_back({4 * k, d, 0});
    }
    return angles;
}

// A join node with its table, of any radix, reached by a plan or not.
struct Join {
    Join(std::int32_t r, std::int32_t m) : block(1 << 22), n(2 * m * r) {
        Arena* arena = block.makeArena();
        auto* lambda =
            FAMILY(envlambda___init__)(orvgArenaMalloc(arena, sizeof(EnvLambda)), arena, n, r);
        const Env8Sizes sizes{r, 0, lanes, 2 * r * lanes, m, 0, n / 2, n - 1, lanes, n / r};
        node = FAMILY(env8___init__)(orvgArenaMalloc(arena, sizeof(Env8)), arena, &sizes, lambda);
        status = FAMILY(env8_plan)(node);
    }
    Block block;
    std::int32_t n;
    Env8* node;
    std::int32_t status;
};

TEST(Tables, OfTheJoins) {
    for (const std::int32_t r : {2, 4, 8, 16, 32}) {
        for (const std::int32_t m : {1, 2, 4, 8, 16, 32, 64}) {
            Join join(r, m);
            ASSERT_EQ(join.status, 0);
            const Real* entry = join.node->table;
            int wrong = 0;
            const std::int32_t innerN = join.n / r;
            for (const Angle& angle : joinAngles(r, m)) {
                volatile Real frequency = (static_cast<Real>(angle.d) + static_cast<Real>(0.5)) /
                                          static_cast<Real>(innerN);
                volatile Real sum = frequency + static_cast<Real>(angle.g);
                // 2/r is a power of two: the product with k is the one that may round.
                volatile double product = static_cast<double>(sum) * angle.k * 2 / r;
                volatile Real rounded = static_cast<Real>(product);
                const double exact = static_cast<double>(angle.units(m)) / join.n;
                EXPECT_NEAR(static_cast<double>(rounded), exact, 8 * unitRoundoff * exact);
                for (const bool sine : {false, true}) {
                    for (std::int32_t l = 0; l < lanes; ++l, ++entry) {
                        wrong += *entry != ofPi(sine, rounded);
                    }
                }
            }
            EXPECT_EQ(wrong, 0) << r << " " << m;
            EXPECT_EQ(entry - join.node->table, m * (2 * r - 2) * lanes);
        }
    }
}

TEST(Tables, OfTheJoinsBeginAsListed) {
    for (const DataRow& row : table("join_tables").rows()) {
        const auto r = static_cast<std::int32_t>(row.integer("r"));
        const auto n = static_cast<std::int32_t>(row.integer("n"));
        Join join(r, n / (2 * r));
        const Real* entry = join.node->table;
        if (row.integer("part") == 2) entry += n / (2 * r) * 2 * 3 * (r / 4) * lanes;
        for (const long units : row.integers("angles")) {
            const double angle = static_cast<double>(units) / n * 3.14159265358979323846;
            const double tolerance = 16 * unitRoundoff * std::max(1.0, angle);
            EXPECT_NEAR(static_cast<double>(entry[0]), std::cos(angle), tolerance) << units;
            EXPECT_NEAR(static_cast<double>(entry[lanes]), std::sin(angle), tolerance) << units;
            entry += 2 * lanes;
        }
    }
}

TEST(Tables, AJoinOfAnotherRadixIsRefused) {
    for (const std::int32_t r : {0, 1, 3, 6, 64, -2}) {
        const Env8Sizes sizes{r, 0, 0, 0, 0, 0, 0, 0, 0, 0};
        EXPECT_EQ(FAMILY(env8__chooseRule)(&sizes), 0) << r;
        Block block(4096);
        Arena* arena = block.makeArena();
        auto* node =
            FAMILY(env8___init__)(orvgArenaMalloc(arena, sizeof(Env8)), arena, &sizes, nullptr);
        EXPECT_EQ(FAMILY(env8_plan)(node), -6) << r;
    }
}

// Counts the calls that a table builder makes of its function object, and sees their arguments.
struct CountingFunction : NodeHeader {
    CountingFunction() : NodeHeader{} { at = evaluate; }
    static double evaluate(const NodeHeader* object, std::int32_t i, std::int32_t j,
                           std::int32_t k) {
        auto* self = const_cast<CountingFunction*>(static_cast<const CountingFunction*>(object));
        self->calls.push_back({i, j, k});
        return 0.25;
    }
    std::vector<std::vector<std::int32_t>> calls;
};

TEST(Tables, TakeOneCallForEachElement) {
    for (const std::int32_t r : {1, 2, 4, 8, 16, 32}) {
        const std::int32_t m = 2 * lanes, N = 2 * r * m;
        Block block(1 << 16);
        Arena* arena = block.makeArena();
        auto* stage = FAMILY(env2___init__)(orvgArenaMalloc(arena, sizeof(Env2)), arena, r, N,
                                            2 * r, m, N, 2 * N - 1, N / r, nullptr);
        CountingFunction function;
        stage->twiddle = &function;
        ASSERT_EQ(FAMILY(env2_plan)(stage), 0);
        ASSERT_EQ(function.calls.size(), static_cast<std::size_t>(N)) << r;
        std::size_t call = 0;
        for (std::int32_t i = 0; i < m / lanes; ++i) {
            for (std::int32_t position = 0; position < r; ++position) {
                for (std::int32_t component = 0; component < 2; ++component) {
                    for (std::int32_t l = 0; l < lanes; ++l, ++call) {
                        EXPECT_EQ(function.calls[call][0], lanes * i + l);
                        EXPECT_EQ(function.calls[call][1],
                                  2 * visitingOrder(r, position) + component);
                    }
                }
            }
        }
        const auto* kernel = static_cast<const Env4*>(EnvList_get(stage->kernelRole, 0));
        for (std::int32_t i = 0; i < N; ++i) EXPECT_EQ(kernel->table[i], static_cast<Real>(0.25));
    }
}

TEST(Tables, OfJoinsTakeOneCallForEachValue) {
    for (const std::int32_t r : {2, 4, 8, 16, 32}) {
        const std::int32_t m = 4, n = 2 * m * r;
        Block block(1 << 18);
        Arena* arena = block.makeArena();
        CountingFunction function;
        const Env8Sizes sizes{r, 0, lanes, 2 * r * lanes, m, 0, n / 2, n - 1, lanes, n / r};
        auto* node =
            FAMILY(env8___init__)(orvgArenaMalloc(arena, sizeof(Env8)), arena, &sizes, &function);
        ASSERT_EQ(FAMILY(env8_plan)(node), 0);
        std::size_t call = 0;
        const std::vector<Angle> angles = joinAngles(r, m);
        ASSERT_EQ(function.calls.size(), 2 * angles.size());
        for (const Angle& angle : angles) {
            EXPECT_EQ(function.calls[call++][0], angle.d);
            EXPECT_EQ(function.calls[call++][0], angle.d);
        }
    }
}

TEST(Functions, OfTheTwiddleSplitAnIndex) {
    Plan plan(64);
    const NodeHeader* compose = EnvList_get(plan.top()->children, 0);
    const NodeHeader* split = EnvList_get(plan.env2()->children, 0);
    for (std::int32_t c = 0; c < 4; ++c) {
        for (std::int32_t p = 0; p < 8; ++p) {
            const double g = 3.14159265358979323846 * (2 * p + 1) * (2 * c + 1) / (4 * 64);
            EXPECT_NEAR(owng_TFunc_IIIR_at(compose, c, 2 * p, 0), std::cos(g), 4 * unitRoundoff);
            EXPECT_NEAR(owng_TFunc_IIIR_at(compose, c, 2 * p + 1, 0), std::sin(g),
                        4 * unitRoundoff);
            for (std::int32_t j : {2 * p, 2 * p + 1}) {
                EXPECT_EQ(owng_TFunc_IIIR_at(split, c / lanes, c % lanes, j),
                          owng_TFunc_IIIR_at(compose, c, j, 0));
            }
        }
    }
}

#if ORVGEN_DCT4_FAMILY == 32
// Integers above 2^24 lose bits on their way into the division, as the chain has it.
TEST(Functions, OfTheTwiddleRoundTheirIntegers) {
    Block block(4096);
    Arena* arena = block.makeArena();
    const std::int32_t N = 1 << 24, r = 32, m = N / (2 * r);
    auto* compose = FAMILY(envfCompose___init__)(orvgArenaMalloc(arena, sizeof(EnvfCompose)), arena,
                                                 2 * r, 8 * N, m, r, 2 * r);
    const std::int32_t c = m - 3, p = 30, above = 2 * (2 * p + 1) * (2 * c + 1);
    ASSERT_NE(static_cast<double>(static_cast<float>(above)), static_cast<double>(above));
    volatile float quotient = static_cast<float>(above) / static_cast<float>(8 * N);
    EXPECT_EQ(owng_TFunc_IIIR_at(compose, c, 2 * p, 0), static_cast<double>(ofPi(false, quotient)));
}
#endif

TEST(Functions, OfTheFrequencyDivideInTheType) {
    Block block(4096);
    Arena* arena = block.makeArena();
    auto* lambda = FAMILY(envlambda___init__)(orvgArenaMalloc(arena, sizeof(EnvLambda)), arena, 100,
                                              30);  // 100 / 30 is 3, an integer division
    for (std::int32_t i = 0; i < 50; ++i) {
        volatile Real above = static_cast<Real>(i) + static_cast<Real>(0.5);
        volatile Real expected = above / static_cast<Real>(3);
        EXPECT_EQ(owng_TFunc_IIIR_at(lambda, i, 0, 0), static_cast<double>(expected));
    }
}

}  // namespace
}  // namespace orvgen::test::dct4
