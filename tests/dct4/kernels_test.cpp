// The compiled kernels, those that no plan reaches included: each gives the bits of its flow run
// lane by lane on plain numbers, in all rounding modes, at any alignment of source and destination;
// and the straight-line bodies give the bits of the written-out sequence of steps.
#include <cfenv>
#include <cmath>
#include <limits>

#include "dct4/flows/dct4.h"
#include "dct4/flows/joinstage.h"
#include "dct4/plan.h"
#include "dct4/quad.h"
#include "dct4/visitingorder.h"

namespace orvgen::test::dct4 {
namespace {

constexpr int roundingModes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

// Any NaN equals any NaN; everything else bit for bit.
bool sameValue(Real a, Real b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return bitsOf(a) == bitsOf(b);
}

void expectSame(const std::vector<Real>& found, const std::vector<Real>& expected,
                const std::string& what) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_TRUE(sameValue(found[i], expected[i]))
            << what << " at " << i << ": " << found[i] << " instead of " << expected[i];
    }
}

// Random numbers, wide ones, small ones, then zeros of both signs, denormals, infinities and NaN
// among random ones.
std::vector<std::vector<Real>> inputs(std::int64_t size) {
    std::vector<std::vector<Real>> all;
    all.push_back(randomVector(size, 11));
    for (const double scale : {0x1p100, 0x1p-120, familyBits == 32 ? 0x1p-145 : 0x1p-1070}) {
        all.push_back(randomVector(size, 12));
        for (Real& value : all.back())
            value = static_cast<Real>(static_cast<double>(value) * scale);
    }
    using Limits = std::numeric_limits<Real>;
    const std::vector<std::vector<Real>> specials = {
        {Real{0}, -Real{0}},
        {Real{0}, -Real{0}, Real{1}, Limits::denorm_min(), -Limits::min()},
        {Limits::infinity(), Real{1}, Real{2}, Real{3}, -Real{4}, Real{5}, Real{7}, Real{9}},
        {Limits::max(), -Limits::max(), Real{1}, Real{0}},
        {Limits::quiet_NaN(), Real{1}, Real{2}, -Limits::infinity(), Real{3}}};
    for (const std::vector<Real>& special : specials) {
        std::vector<Real> x = randomVector(size, 13);
        for (std::size_t i = 0; i < x.size(); ++i) {
            if (special.size() == 2 || i % 3 == 0) x[i] = special[(i / 3 + i) % special.size()];
        }
        all.push_back(x);
    }
    return all;
}

// In every rounding mode, on every input: the kernel's destination against the expectation.
template <class Found, class Expected>
void compare(std::int64_t size, const std::string& what, const Found& found,
             const Expected& expected) {
    for (const std::vector<Real>& x : inputs(size)) {
        for (const int mode : roundingModes) {
            std::fesetround(mode);
            const std::vector<Real> a = found(x);
            const std::vector<Real> b = expected(x);
            std::fesetround(FE_TONEAREST);
            expectSame(a, b, what);
        }
    }
}

// A vector whose data lie `offset` elements behind a 16-byte boundary.
class Offset {
  public:
    Offset(const std::vector<Real>& values, std::size_t offset)
        : memory(values.size() + 16), count(values.size()) {
        const auto address = reinterpret_cast<std::uintptr_t>(memory.data());
        start = (16 - address % 16) % 16 / sizeof(Real) + offset;
        std::copy(values.begin(), values.end(), data());
    }
    Real* data() { return memory.data() + start; }
    std::vector<Real> take() { return {data(), data() + count}; }

  private:
    std::vector<Real> memory;
    std::size_t start, count;
};

constexpr Real pattern = static_cast<Real>(-77);

template <int... sizes, class Body>
void forSizes(Body&& body) {
    (body(Index<sizes>{}), ...);
}

// Sequence a of a source of N elements: sample t at a + S t, mirrored at 2N - 1 from the middle on.
template <int n>
void oddFrequencyOfLane(const std::vector<Real>& x, std::int64_t a, std::int64_t S, std::int64_t N,
                        std::vector<Real>& dst, std::int64_t out, std::int64_t step) {
    oddFrequency<n, Real>(
        [&](auto t) {
            const std::int64_t P = a + S * t;
            return x[static_cast<std::size_t>(P < N ? P : 2 * N - 1 - P)];
        },
        [&](auto c, Complex<Real> z) {
            dst[static_cast<std::size_t>(out + 2 * c * step)] = z.re;
            dst[static_cast<std::size_t>(out + (2 * c + 1) * step)] = z.im;
        });
}

TEST(Kernels, OfTheFirstStage) {
    forSizes<2, 4, 8, 16, 32, 64>([](auto n) {
        for (const std::int32_t groups : {1, 2, 3}) {
            const std::int32_t r = groups * lanes, N = r * n;
            Block block(4096);
            Arena* arena = block.makeArena();
            Env5* node = make<Env5>(arena, n, N, r);
            ASSERT_EQ(Operations<Env5>::plan(node), 0);
            EXPECT_EQ(node->rule, table("odd_frequency").row("n", n).integer("rule"));
            for (const std::size_t offset : {0U, 1U, 2U, 3U}) {
                compare(
                    N, "first stage " + std::to_string(n),
                    [&](const std::vector<Real>& x) {
                        Offset src(x, offset), dst(std::vector<Real>(x.size(), pattern), 0);
                        EXPECT_EQ(Operations<Env5>::compute(node, dst.data(), src.data()), orvOk);
                        return dst.take();
                    },
                    [&](const std::vector<Real>& x) {
                        std::vector<Real> dst(x.size(), pattern);
                        for (std::int32_t p = 0; p < r; ++p) {
                            oddFrequencyOfLane<n>(x, p, 2 * r, N, dst, p, r);
                        }
                        return dst;
                    });
            }
        }
    });
}

// The inner transforms of one group: sequences from offset a on, results from c on.
TEST(Kernels, OfTheInnerTransforms) {
    forSizes<2, 4, 8, 16, 32, 64>([](auto n) {
        const std::int32_t r = 2 * lanes, count = 4, N = r * n * count;
        const std::int32_t in = 2 * r, out = r;
        Block block(4096);
        Arena* arena = block.makeArena();
        Env9* node = make<Env9>(arena, n, N, count, in, out);
        ASSERT_EQ(Operations<Env9>::plan(node), 0);
        EXPECT_EQ(node->rule, table("odd_frequency").row("n", n).integer("rule"));
        for (const std::int32_t a : {0, +lanes}) {
            for (const std::size_t offset : {0U, 1U}) {
                compare(
                    N, "inner " + std::to_string(n),
                    [&](const std::vector<Real>& x) {
                        Offset src(x, offset), dst(std::vector<Real>(x.size(), pattern), 0);
                        EXPECT_EQ(Operations<Env9>::compute(node, dst.data(), src.data(), a,
                                                            2 * N - 1 - 2 * a, a),
                                  orvOk);
                        return dst.take();
                    },
                    [&](const std::vector<Real>& x) {
                        std::vector<Real> dst(x.size(), pattern);
                        for (std::int32_t s = 0; s < count; ++s) {
                            for (std::int32_t l = 0; l < lanes; ++l) {
                                oddFrequencyOfLane<n>(x, a + l + in * s, count * in, N, dst,
                                                      a + l + out * s, count * out);
                            }
                        }
                        return dst;
                    });
            }
        }
    });
}

TEST(Kernels, OfTheSecondStage) {
    forSizes<1, 2, 4, 8, 16, 32>([](auto r) {
        for (const std::int32_t groups : {1, 2, 5}) {
            const std::int32_t m = groups * lanes, N = 2 * r * m;
            Block block(1 << 16);
            Arena* arena = block.makeArena();
            auto* compose = make<EnvfCompose>(arena, r, N);
            Env2* stage = make<Env2>(arena, r, N, compose);
            ASSERT_EQ(Operations<Env2>::plan(stage), 0);
            const auto* node = static_cast<const Env4*>(EnvList_get(stage->kernelRole, 0));
            EXPECT_EQ(node->rule, table("stage_two").row("r", r).integer("rule"));
            for (const std::size_t offset : {0U, 1U, 2U, 3U}) {
                compare(
                    N, "second stage " + std::to_string(r),
                    [&](const std::vector<Real>& t) {
                        Offset src(t, 0), dst(std::vector<Real>(t.size(), pattern), offset);
                        EXPECT_EQ(Operations<Env4>::compute(node, dst.data(), src.data()), orvOk);
                        return dst.take();
                    },
                    [&](const std::vector<Real>& t) {
                        std::vector<Real> y(t.size(), pattern);
                        for (std::int32_t c = 0; c < m; ++c) {
                            const Real* group = node->table + c / lanes * lanes * 2 * r;
                            std::int32_t position = 0;
                            stageTwo<r, Real>(
                                [&](auto p) {
                                    EXPECT_EQ(p, visitingOrder(r, position));
                                    const Real* entry = group + 2 * position++ * lanes + c % lanes;
                                    const std::size_t at = element(2 * r * c + p);
                                    return rotate(Complex<Real>{t[at], t[at + r]}, entry[0],
                                                  entry[lanes]);
                                },
                                [&](auto u, Real value) {
                                    // q = u to and q = -u - 1 fro
                                    const std::int32_t k =
                                        u >= 0 ? 2 * m * u + c : 2 * m * (-u - 1) + 2 * m - 1 - c;
                                    y[static_cast<std::size_t>(k)] = value;
                                });
                        }
                        return y;
                    });
            }
        }
    });
}

TEST(Kernels, OfTheJoins) {
    forSizes<2, 4, 8, 16, 32>([](auto r) {
        for (const std::int32_t m : {1, 2, 8}) {
            const std::int32_t n = 2 * m * r, stride = 2 * lanes, N = n * stride;
            Block block(1 << 17);
            Arena* arena = block.makeArena();
            auto* lambda = make<EnvLambda>(arena, n, r);
            Env8* node = make<Env8>(arena, n, r, N, stride, lambda);
            ASSERT_EQ(Operations<Env8>::plan(node), 0);
            EXPECT_EQ(node->rule, table("joins").row("r", r).integer("rule"));
            for (const std::int32_t from : {0, +lanes}) {
                for (const std::int32_t to : {0, +lanes}) {
                    compare(
                        N, "join " + std::to_string(r),
                        [&](const std::vector<Real>& z) {
                            Offset src(z, 0), dst(std::vector<Real>(z.size(), pattern), 0);
                            EXPECT_EQ(
                                Operations<Env8>::compute(node, dst.data(), src.data(), from, to),
                                orvOk);
                            return dst.take();
                        },
                        [&](const std::vector<Real>& z) {
                            std::vector<Real> dst(z.size(), pattern);
                            const std::int32_t firstOfD = r <= 8 ? 2 * r - 2 : 6 * (r / 4);
                            const std::int32_t secondOfD = r <= 8 ? 0 : 2 * (r / 4) - 2;
                            for (std::int32_t d = 0; d < m; ++d) {
                                const Real* first = node->table + d * firstOfD * lanes;
                                const Real* second =
                                    node->table + (m * firstOfD + d * secondOfD) * lanes;
                                for (std::int32_t l = 0; l < lanes; ++l) {
                                    const Real* next = first;
                                    joinStage<r, Real>(
                                        [&](auto s) {
                                            const std::size_t at =
                                                element(from + l + stride * (2 * r * d + s));
                                            return Complex<Real>{z[at], z[at + r * stride]};
                                        },
                                        [&](Complex<Real> v) {
                                            const Complex<Real> turned =
                                                rotate(v, next[0], next[lanes]);
                                            next += 2 * lanes;
                                            return turned;
                                        },
                                        [&](Complex<Real> v, auto k) {
                                            const Real* entry = second + 2 * (k - 1) * lanes;
                                            return rotate(v, entry[0], entry[lanes]);
                                        },
                                        [&](auto f, Complex<Real> D) {
                                            const std::int32_t index =
                                                f < r / 2 ? 2 * m * f + d
                                                          : 2 * m * (r - 1 - f) + 2 * m - 1 - d;
                                            const std::size_t at =
                                                element(to + l + 2 * index * stride);
                                            dst[at] = D.re;
                                            dst[at + stride] = D.im;
                                        });
                                }
                            }
                            return dst;
                        });
                }
            }
        }
    });
}

TEST(Kernels, RefuseUnknownRulesWithDstUntouched) {
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
TEST(Kernels, TwoPointTransformNegatesTheMirroredSample) {
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
TEST(Stages, OfLength64) {
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

// The written-out steps of the short lengths. Every constant is rounded once from binary128, to
// nearest whatever the mode (not inlined and volatile: no arithmetic may change places with it),
// and every operation stands alone.
[[gnu::noinline]] Real constant(Quad (*function)(std::int64_t, std::int64_t), std::int64_t num,
                                std::int64_t den) {
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    volatile Real value = static_cast<Real>(function(num, den));
    std::fesetround(mode);
    return value;
}

struct Pair {
    Real re, im;
};

Pair turn(Pair z, std::int64_t num, std::int64_t den) {
    const Real c = constant(cosPi, num, den), s = constant(sinPi, num, den);
    return {c * z.re - s * z.im, s * z.re + c * z.im};
}

std::vector<Real> stepsOf2(const std::vector<Real>& x) {
    const Real c = constant(cosPi, 1, 8), s = constant(sinPi, 1, 8);
    return {c * x[0] + s * x[1], s * x[0] - c * x[1]};
}

std::vector<Real> stepsOf4(const std::vector<Real>& x) {
    const auto lifted = [](Real a, Real b, std::int64_t num) {
        const Real T = constant(tanPi, num, 32), S = constant(sinPi, num, 16);
        const Real a1 = a - T * b;
        const Real b1 = b + S * a1;
        return Pair{a1 - T * b1, b1};
    };
    const Pair z0 = lifted(x[0], x[3], 7), z1 = lifted(x[1], x[2], 5);
    const Real k = constant(cosPi, 1, 4);
    return {z0.im + z1.im, k * (z0.im - z1.im) + k * (z0.re + z1.re),
            k * (z0.im - z1.im) - k * (z0.re + z1.re), z0.re - z1.re};
}

std::vector<Pair> foldedLeaves(const std::vector<Pair>& z) {
    const std::size_t L = z.size();
    if (L == 1) return z;
    const Real k = constant(cosPi, 1, 4);
    std::vector<Pair> p, q;
    for (std::size_t i = 0; i < L / 2; ++i) {
        const Pair one = z[i], other = z[L - 1 - i];
        p.push_back({one.re + other.re, one.im - other.im});
        const Pair d{one.re - other.re, one.im + other.im};
        const auto odd = static_cast<std::int64_t>(2 * i + 1);
        q.push_back(L == 2 ? Pair{k * d.re - k * d.im, k * d.re + k * d.im}
                           : turn(d, odd, static_cast<std::int64_t>(2 * L)));
    }
    std::vector<Pair> leaves = foldedLeaves(p);
    const std::vector<Pair> behind = foldedLeaves(q);
    leaves.insert(leaves.end(), behind.begin(), behind.end());
    return leaves;
}

std::vector<Real> stepsFolded(const std::vector<Real>& x) {
    const std::size_t N = x.size(), Q = N / 4;
    const Real k = constant(cosPi, 1, 4);
    std::vector<Pair> A, B;
    for (std::size_t j = 0; j < Q; ++j) {
        const Real u = k * (x[N / 2 + j] + x[N / 2 - 1 - j]);
        const Real v = k * (x[N / 2 + j] - x[N / 2 - 1 - j]);
        const auto odd = static_cast<std::int64_t>(2 * j + 1),
                   den = static_cast<std::int64_t>(4 * N);
        A.push_back(turn({x[j] + u, v - x[N - 1 - j]}, odd, den));
        B.push_back(turn({x[j] - u, v + x[N - 1 - j]}, 3 * odd, den));
    }
    A = foldedLeaves(A);
    B = foldedLeaves(B);
    std::vector<Real> y(N);
    for (std::size_t l = 0; l < Q; ++l) {
        std::size_t r = 0;
        for (std::size_t bit = 1, mirror = Q / 2; bit < Q; bit *= 2, mirror /= 2) {
            if (l & bit) r |= mirror;
        }
        y[4 * r] = A[l].re;
        y[N - 1 - 4 * r] = A[l].im;
        y[4 * r + 1] = B[l].re;
        y[N - 2 - 4 * r] = B[l].im;
    }
    return y;
}

TEST(Bodies, GiveTheBitsOfTheWrittenSteps) {
    const auto expectSteps = [](std::int32_t N, const auto& steps) {
        Plan plan(N);
        compare(
            N, "length " + std::to_string(N), [&](const std::vector<Real>& x) { return plan(x); },
            steps);
        for (unsigned seed = 100; seed < 400; ++seed) {
            const std::vector<Real> x = randomVector(N, seed);
            expectSame(plan(x), steps(x), "length " + std::to_string(N));
        }
    };
    expectSteps(2, stepsOf2);
    expectSteps(4, stepsOf4);
    expectSteps(8, stepsFolded);
    expectSteps(16, stepsFolded);
}

TEST(Bodies, OfLength32GiveTheBitsOfTheFlow) {
    Plan plan(32);
    compare(
        32, "length 32", [&](const std::vector<Real>& x) { return plan(x); },
        [](const std::vector<Real>& x) {
            std::vector<Real> y(32);
            ::orvgen::dct4::dct4<32, Real>([&](auto j) { return x[j]; },
                                           [&](auto k, Real value) { y[k] = value; });
            return y;
        });
}

}  // namespace
}  // namespace orvgen::test::dct4
