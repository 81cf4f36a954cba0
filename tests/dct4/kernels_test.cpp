// SPDX-License-Identifier: MIT
// The compiled kernels, those that no plan reaches included: each gives the bits of its flow,
// carried out lane by lane on plain numbers, in all rounding modes, at any alignment of source and
// destination.
#include "dct4/compare.h"
#include "dct4/recording.h"

namespace orvgen::test::dct4 {
namespace {

// The transform of sequence a of a source of N elements: sample t at a + S t, mirrored at 2N - 1
// from the middle on; results from `out` on, a step apart.
void oddFrequencyOf(const Evaluation<Real>& flow, const std::vector<Real>& x, std::int64_t a,
                    std::int64_t S, std::vector<Real>& dst, std::int64_t out, std::int64_t step) {
    const auto N = static_cast<std::int64_t>(x.size());
    const std::vector<Real> Z = flow([&](int t) {
        const std::int64_t P = a + S * t;
        return x[element(P < N ? P : 2 * N - 1 - P)];
    });
    for (std::size_t i = 0; i < Z.size(); ++i) {
        dst[element(out + static_cast<std::int64_t>(i) * step)] = Z[i];
    }
}

TEST(Dct4Kernels, OfTheFirstStageGiveTheBitsOfTheirFlows) {
    for (const std::int32_t n : {2, 4, 8, 16, 32, 64}) {
        const Evaluation<Real> flow(oddFrequencyRecording(n));
        for (const std::int32_t groups : {1, 2, 3}) {
            const std::int32_t r = groups * lanes, N = r * n;
            Block block(4096);
            Arena* arena = block.makeArena();
            Env5* node = make<Env5>(arena, n, N, r);
            ASSERT_EQ(Operations<Env5>::plan(node), 0);
            EXPECT_EQ(node->rule, table("odd_frequency").row("n", n).integer("rule"));
            const auto expected = [&](const std::vector<Real>& x) {
                std::vector<Real> dst(x.size(), pattern);
                for (std::int32_t p = 0; p < r; ++p) {
                    oddFrequencyOf(flow, x, p, 2 * r, dst, p, r);
                }
                return dst;
            };
            for (const std::size_t offset : {0U, 1U, 2U, 3U}) {
                const auto found = [&](const std::vector<Real>& x) {
                    Offset src(x, offset), dst(std::vector<Real>(x.size(), pattern), 0);
                    EXPECT_EQ(Operations<Env5>::compute(node, dst.data(), src.data()), orvOk);
                    return dst.take();
                };
                compare(N, "first stage " + std::to_string(n), found, expected);
            }
        }
    }
}

// The inner transforms of one group: sequences from offset a on, results from c = a on.
TEST(Dct4Kernels, OfTheInnerTransformsGiveTheBitsOfTheirFlows) {
    for (const std::int32_t n : {2, 4, 8, 16, 32, 64}) {
        const Evaluation<Real> flow(oddFrequencyRecording(n));
        const std::int32_t r = 2 * lanes, count = 4, N = r * n * count;
        const std::int32_t in = 2 * r, out = r;
        Block block(4096);
        Arena* arena = block.makeArena();
        Env9* node = make<Env9>(arena, n, N, count, in, out);
        ASSERT_EQ(Operations<Env9>::plan(node), 0);
        EXPECT_EQ(node->rule, table("odd_frequency").row("n", n).integer("rule"));
        for (const std::int32_t a : {0, +lanes}) {
            const auto expected = [&](const std::vector<Real>& x) {
                std::vector<Real> dst(x.size(), pattern);
                for (std::int32_t s = 0; s < count; ++s) {
                    for (std::int32_t l = 0; l < lanes; ++l) {
                        oddFrequencyOf(flow, x, a + l + in * s, count * in, dst, a + l + out * s,
                                       count * out);
                    }
                }
                return dst;
            };
            for (const std::size_t offset : {0U, 1U}) {
                const auto found = [&](const std::vector<Real>& x) {
                    Offset src(x, offset), dst(std::vector<Real>(x.size(), pattern), 0);
                    EXPECT_EQ(Operations<Env9>::compute(node, dst.data(), src.data(), a,
                                                        2 * N - 1 - 2 * a, a),
                              orvOk);
                    return dst.take();
                };
                compare(N, "inner transform " + std::to_string(n), found, expected);
            }
        }
    }
}

TEST(Dct4Kernels, OfTheSecondStageGiveTheBitsOfTheirFlows) {
    for (const std::int32_t r : {1, 2, 4, 8, 16, 32}) {
        const Evaluation<Real> flow(stageTwoRecording(r));
        for (const std::int32_t groups : {1, 2, 5}) {
            const std::int32_t m = groups * lanes, N = 2 * r * m;
            Block block(1 << 16);
            Arena* arena = block.makeArena();
            Env2* stage = make<Env2>(arena, r, N, make<EnvfCompose>(arena, r, N));
            ASSERT_EQ(Operations<Env2>::plan(stage), 0);
            const auto* node = static_cast<const Env4*>(EnvList_get(stage->kernelRole, 0));
            EXPECT_EQ(node->rule, table("stage_two").row("r", r).integer("rule"));
            const auto expected = [&](const std::vector<Real>& t) {
                std::vector<Real> y(t.size(), pattern);
                for (std::int32_t c = 0; c < m; ++c) {
                    // The block's lane of the vectors of its group.
                    const Real* twiddles = node->table + c / lanes * lanes * 2 * r + c % lanes;
                    const std::vector<Real> Y = flow([&](int i) {
                        return i < 2 * r ? t[element(2 * r * c + i)]
                                         : twiddles[(i - 2 * r) * lanes];
                    });
                    for (std::int32_t q = 0; q < r; ++q) {
                        y[element(2 * m * q + c)] = Y[element(r + q)];
                        y[element(2 * m * q + 2 * m - 1 - c)] = Y[element(r - 1 - q)];
                    }
                }
                return y;
            };
            for (const std::size_t offset : {0U, 1U, 2U, 3U}) {
                const auto found = [&](const std::vector<Real>& t) {
                    Offset src(t, 0), dst(std::vector<Real>(t.size(), pattern), offset);
                    EXPECT_EQ(Operations<Env4>::compute(node, dst.data(), src.data()), orvOk);
                    return dst.take();
                };
                compare(N, "second stage " + std::to_string(r), found, expected);
            }
        }
    }
}

TEST(Dct4Kernels, OfTheJoinsGiveTheBitsOfTheirFlows) {
    for (const std::int32_t r : {2, 4, 8, 16, 32}) {
        const Evaluation<Real> flow(joinRecording(r));
        const std::int32_t first = firstTwiddles(r), second = r - 1 - first;
        for (const std::int32_t m : {1, 2, 8}) {
            const std::int32_t n = 2 * m * r, stride = 2 * lanes, N = n * stride;
            Block block(1 << 17);
            Arena* arena = block.makeArena();
            Env8* node = make<Env8>(arena, n, r, N, stride, make<EnvLambda>(arena, n, r));
            ASSERT_EQ(Operations<Env8>::plan(node), 0);
            EXPECT_EQ(node->rule, table("joins").row("r", r).integer("rule"));
            // Result f of join d for one lane.
            const auto joined = [&](const std::vector<Real>& z, std::int32_t d, std::int32_t lane) {
                const Real* firstTable = node->table + d * 2 * first * lanes;
                const Real* secondTable = node->table + (m * first + d * second) * 2 * lanes;
                return flow([&](int i) {
                    if (i < 2 * r) return z[element(lane + stride * (2 * r * d + i))];
                    i -= 2 * r;
                    return i < 2 * first ? firstTable[i * lanes]
                                         : secondTable[(i - 2 * first) * lanes];
                });
            };
            for (const std::int32_t from : {0, +lanes}) {
                for (const std::int32_t to : {0, +lanes}) {
                    const auto expected = [&](const std::vector<Real>& z) {
                        std::vector<Real> dst(z.size(), pattern);
                        for (std::int32_t d = 0; d < m; ++d) {
                            for (std::int32_t l = 0; l < lanes; ++l) {
                                const std::vector<Real> D = joined(z, d, from + l);
                                for (std::int32_t f = 0; f < r; ++f) {
                                    const std::int32_t c =
                                        f < r / 2 ? 2 * m * f + d : 2 * m * (r - f) - 1 - d;
                                    const std::int32_t at = to + l + 2 * c * stride;
                                    dst[element(at)] = D[element(2 * f)];
                                    dst[element(at + stride)] = D[element(2 * f + 1)];
                                }
                            }
                        }
                        return dst;
                    };
                    const auto found = [&](const std::vector<Real>& z) {
                        Offset src(z, 0), dst(std::vector<Real>(z.size(), pattern), 0);
                        EXPECT_EQ(Operations<Env8>::compute(node, dst.data(), src.data(), from, to),
                                  orvOk);
                        return dst.take();
                    };
                    compare(N, "join " + std::to_string(r), found, expected);
                }
            }
        }
    }
}

TEST(Dct4Kernels, RefuseUnknownRulesWithDstUntouched) {
    for (const std::int32_t N : {64, 4096, 131072}) {
        Plan plan(N);
        const std::vector<Real> x = randomVector(N, 1);
        std::vector<Real> dst(x.size(), pattern);
        const std::vector<Real> untouched = dst;
        const auto expectRefusals =
            [&](std::int32_t& rule, const std::vector<std::int32_t>& unknown, const auto& compute) {
                const std::int32_t before = rule;
                for (const std::int32_t value : unknown) {
                    rule = value;
                    EXPECT_EQ(compute(), orvErrPlan) << value;
                }
                rule = before;
                EXPECT_TRUE(sameBits(dst, untouched));
            };
        expectRefusals(plan.env4()->rule, {-1, 0, 7, 1000}, [&] {
            return Operations<Env4>::compute(plan.env4(), dst.data(), x.data());
        });
        expectRefusals(plan.env5()->rule, {-1, 0, 8, 1000}, [&] {
            return Operations<Env5>::compute(plan.env5(), dst.data(), x.data());
        });
        for (Env7* level : plan.levels()) {
            Env8* join = Plan::child<Env8>(level->joinRole);
            Env9* inner = Plan::child<Env9>(level->innerRole);
            expectRefusals(join->rule, {-1, 0, 6, 1000}, [&] {
                return Operations<Env8>::compute(join, dst.data(), x.data(), 0, 0);
            });
            expectRefusals(inner->rule, {-1, 0, 8, 1000}, [&] {
                return Operations<Env9>::compute(inner, dst.data(), x.data(), 0, 2 * N - 1, 0);
            });
            expectRefusals(level->active, {-1, 0, 2, 1000}, [&] {
                return Operations<Env7>::compute(level, dst.data(), x.data(), 0, 2 * N - 1, 0);
            });
        }
    }
}

// The negation is a subtraction from +0.
TEST(Dct4TwoPointKernel, NegatesTheMirroredSample) {
    const std::int32_t r = lanes, N = 2 * r;
    Block block(4096);
    Arena* arena = block.makeArena();
    Env5* node = make<Env5>(arena, 2, N, r);
    ASSERT_EQ(Operations<Env5>::plan(node), 0);
    std::vector<Real> x = randomVector(N, 1);
    x[static_cast<std::size_t>(N - 1)] = 0;  // w_0[-1]
    Offset src(x, 0), dst(x, 0);
    EXPECT_EQ(Operations<Env5>::compute(node, dst.data(), src.data()), orvOk);
    for (std::int32_t p = 0; p < r; ++p) {
        EXPECT_EQ(dst.data()[p], x[static_cast<std::size_t>(p)]);
        EXPECT_EQ(dst.data()[r + p], -x[static_cast<std::size_t>(N - 1 - p)]);
    }
    EXPECT_FALSE(std::signbit(dst.data()[r]));
}

// Length 64: the first stage spreads x[0] evenly, and the zigzag of the second.
TEST(Dct4Length64, SpreadsAndFoldsItsBlocks) {
    Plan plan(64);
    std::vector<Real> x(64), t(64, pattern);
    x[0] = 1;
    Offset scratch(t, 0);
    EXPECT_EQ(Operations<Env5>::compute(plan.env5(), scratch.data(), x.data()), orvOk);
    t = scratch.take();
    for (const std::size_t one : {0U, 16U, 32U, 48U}) EXPECT_EQ(t[one], Real{1});
    EXPECT_EQ(t[8], Real{0});

    std::vector<long> block(64, -1);
    for (std::size_t i = 0; i < 64; ++i) {
        std::vector<Real> unit(64), y(64);
        unit[i] = 1;
        Offset src(unit, 0);
        EXPECT_EQ(Operations<Env4>::compute(plan.env4(), y.data(), src.data()), orvOk);
        for (std::size_t k = 0; k < 64; ++k) {
            if (y[k] == Real{0}) continue;
            const long from = static_cast<long>(i / 16);
            EXPECT_TRUE(block[k] == -1 || block[k] == from) << k;
            block[k] = from;
        }
    }
    for (std::size_t k = 0; k < 64; ++k) {
        EXPECT_EQ(block[k], table("zigzag64").row("k", static_cast<long>(k % 8)).integer("block"));
    }
}

}  // namespace
}  // namespace orvgen::test::dct4
