// SPDX-License-Identifier: MIT
// Every value of a plan's tables, and the function objects that they come from.
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

// Every element: numerator and denominator in the family's type, one division, the helper's chain.
TEST(Dct4Tables, OfTheSecondStageHoldTheChainsValues) {
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
        auto* lambda = make<EnvLambda>(arena, n, r);
        node = make<Env8>(arena, n, r, 0, lanes, lambda);
        status = Operations<Env8>::plan(node);
    }
    Block block;
    std::int32_t n;
    Env8* node;
    std::int32_t status;
};

TEST(Dct4Tables, OfTheJoinsHoldTheChainsValues) {
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

TEST(Dct4Tables, OfTheJoinsBeginAsListed) {
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

TEST(Dct4Join, RefusesAnotherRadix) {
    for (const std::int32_t r : {0, 1, 3, 6, 64, -2}) {
        Block block(4096);
        Arena* arena = block.makeArena();
        Env8* node = make<Env8>(arena, 64, 8, 0, lanes, nullptr);
        node->r = r;
        EXPECT_EQ(Operations<Env8>::chooseRule(node), 0) << r;
        EXPECT_EQ(Operations<Env8>::plan(node), -6) << r;
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

TEST(Dct4Tables, TakeOneCallForEachElement) {
    for (const std::int32_t r : {1, 2, 4, 8, 16, 32}) {
        const std::int32_t m = 2 * lanes, N = 2 * r * m;
        Block block(1 << 16);
        Arena* arena = block.makeArena();
        auto* stage = make<Env2>(arena, r, N, nullptr);
        CountingFunction function;
        stage->twiddle = &function;
        ASSERT_EQ(Operations<Env2>::plan(stage), 0);
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

TEST(Dct4Tables, OfTheJoinsTakeOneCallForEachValue) {
    for (const std::int32_t r : {2, 4, 8, 16, 32}) {
        const std::int32_t m = 4, n = 2 * m * r;
        Block block(1 << 18);
        Arena* arena = block.makeArena();
        CountingFunction function;
        Env8* node = make<Env8>(arena, n, r, 0, lanes, &function);
        ASSERT_EQ(Operations<Env8>::plan(node), 0);
        std::size_t call = 0;
        const std::vector<Angle> angles = joinAngles(r, m);
        ASSERT_EQ(function.calls.size(), 2 * angles.size());
        for (const Angle& angle : angles) {
            EXPECT_EQ(function.calls[call++][0], angle.d);
            EXPECT_EQ(function.calls[call++][0], angle.d);
        }
    }
}

TEST(Dct4Twiddle, IsTheAngleOfItsBlockAndSequence) {
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

// In 32-bit float integers above 2^24 lose bits on their way into the division.
TEST(Dct4Twiddle, RoundsItsIntegersToTheType) {
    Block block(4096);
    Arena* arena = block.makeArena();
    const std::int32_t N = 1 << 24, r = 32, m = N / (2 * r);
    auto* compose = make<EnvfCompose>(arena, r, N);
    const std::int32_t c = m - 3, p = 30, above = 2 * (2 * p + 1) * (2 * c + 1);
    EXPECT_EQ(static_cast<double>(static_cast<Real>(above)) == above, familyBits == 64);
    volatile Real quotient = static_cast<Real>(above) / static_cast<Real>(8 * N);
    EXPECT_EQ(owng_TFunc_IIIR_at(compose, c, 2 * p, 0), static_cast<double>(ofPi(false, quotient)));
}

TEST(Dct4Frequency, DividesInTheType) {
    Block block(4096);
    Arena* arena = block.makeArena();
    auto* lambda = make<EnvLambda>(arena, 100, 30);  // 100 / 30 is 3, an integer division
    for (std::int32_t i = 0; i < 50; ++i) {
        volatile Real above = static_cast<Real>(i) + static_cast<Real>(0.5);
        volatile Real expected = above / static_cast<Real>(3);
        EXPECT_EQ(owng_TFunc_IIIR_at(lambda, i, 0, 0), static_cast<double>(expected));
    }
}

}  // namespace
}  // namespace orvgen::test::dct4
