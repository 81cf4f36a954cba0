// SPDX-License-Identifier: MIT
// The flows are the transforms they claim to be: carried out in binary128 on random and unit
// inputs, they give the defining sums to 30 digits. Their constants in both types are the rounded
// ones.
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

#include "dct4/flows/complex.h"
#include "dct4/recording.h"

namespace orvgen::test::dct4 {
namespace {

using namespace orvgen::dct4;

constexpr double tolerance = 1e-30;

// A random vector, then the unit vectors.
template <class Check>
void onInputs(int size, Check check) {
    std::vector<Quad> x(static_cast<std::size_t>(size));
    std::mt19937_64 generator(static_cast<std::uint64_t>(size));
    std::uniform_real_distribution<double> uniform(-1, 1);
    for (Quad& value : x) value = uniform(generator);
    check(x);
    for (std::size_t unit = 0; unit < x.size(); ++unit) {
        std::fill(x.begin(), x.end(), Quad{0});
        x[unit] = 1;
        check(x);
    }
}

void expectNear(Quad found, Quad expected) {
    EXPECT_LT(static_cast<double>(magnitude(found - expected)), tolerance);
}

// The number of an input or a result.
std::size_t at(int number) { return static_cast<std::size_t>(number); }

TEST(Dct4Bodies, AreTheTransformInBinary128) {
    for (const int N : {2, 4, 8, 16, 32}) {
        const DirectDct4 direct(N);
        const Evaluation<Quad> flow(bodyRecording(N));
        onInputs(N, [&](const std::vector<Quad>& x) {
            const std::vector<Quad> y = flow([&](int j) { return x[at(j)]; });
            for (int k = 0; k < N; ++k) expectNear(y[at(k)], direct(x, k));
        });
    }
}

TEST(Dct4OddFrequencyFlows, AreTheirSumsInBinary128) {
    for (const int n : {2, 4, 8, 16, 32, 64}) {
        const UnitCircle angles(n);
        const Evaluation<Quad> flow(oddFrequencyRecording(n));
        onInputs(n, [&](const std::vector<Quad>& w) {
            const std::vector<Quad> Z = flow([&](int t) { return w[at(t)]; });
            for (int c = 0; c < n / 2; ++c) {
                Quad re = 0, im = 0;
                for (int t = 0; t < n; ++t) {
                    const int u = t < n / 2 ? t : t - n;
                    re += w[at(t)] * angles.cosine(u * (2 * c + 1));
                    im += w[at(t)] * angles.sine(u * (2 * c + 1));
                }
                expectNear(Z[at(2 * c)], re);
                expectNear(Z[at(2 * c + 1)], im);
            }
        });
    }
}

// The twiddles are all 1 here: V is what the flow turns by them.
TEST(Dct4SecondStageFlows, AreTheirSumsInBinary128) {
    for (const int r : {1, 2, 4, 8, 16, 32}) {
        const UnitCircle angles(2 * r);
        const Evaluation<Quad> flow(stageTwoRecording(r));
        onInputs(2 * r, [&](const std::vector<Quad>& V) {
            const std::vector<Quad> Y = flow([&](int i) {
                const bool cosine = i % 2 == 0;
                return i < 2 * r ? V[at(i)] : Quad(cosine ? 1 : 0);
            });
            for (int u = -r; u < r; ++u) {
                Quad sum = 0;
                for (int p = 0; p < r; ++p) {
                    const int angle = u * (2 * p + 1);
                    sum += V[at(p)] * angles.cosine(angle) - V[at(r + p)] * angles.sine(angle);
                }
                expectNear(Y[at(r + u)], sum);
            }
        });
    }
}

// One result number d = 2 of m' = 3: twiddles exp(i pi k (2d + 1) / n), n = 2 m' R.
TEST(Dct4Joins, AreTheirSumsInBinary128) {
    for (const int R : {2, 4, 8, 16, 32}) {
        const int d = 2, m = 3, n = 2 * m * R;
        const UnitCircle angles(n);
        const Evaluation<Quad> flow(joinRecording(R));
        // Angles of the twiddles in units of pi / n, in the order of the tables.
        std::vector<int> twiddles;
        for (int i = 0; i < firstTwiddles(R); ++i) {
            const int k = R <= 8 ? i + 1 : i % 3 + 1, g = R <= 8 ? 0 : i / 3;
            twiddles.push_back(k * (2 * d + 1 + 4 * m * g));
        }
        for (int k = 1; R > 8 && k < R / 4; ++k) twiddles.push_back(4 * k * (2 * d + 1));
        onInputs(2 * R, [&](const std::vector<Quad>& Z) {
            const std::vector<Quad> D = flow([&](int i) {
                if (i < 2 * R) return Z[at(i)];
                const int units = twiddles[at((i - 2 * R) / 2)];
                return i % 2 == 0 ? angles.cosine(units) : angles.sine(units);
            });
            for (int f = 0; f < R; ++f) {
                Quad re = 0, im = 0;
                for (int s = 0; s < R; ++s) {
                    const int units = s * (2 * d + 1) + 4 * m * s * f;  // 2 pi s f / R too
                    const Quad c = angles.cosine(units), i = angles.sine(units);
                    re += Z[at(s)] * c - Z[at(R + s)] * i;
                    im += Z[at(s)] * i + Z[at(R + s)] * c;
                }
                expectNear(D[at(2 * f)], re);
                expectNear(D[at(2 * f + 1)], f < R / 2 ? im : -im);
            }
        });
    }
}

// cos and sin of all multiples of pi / 128 in a turn, as a kernel names them.
template <class Real, Trig which>
std::array<Real, 256> namedConstants() {
    std::array<Real, 256> values;
    unroll<256>([&](auto i) { values[i] = valueOf<Real>(Constant<which, i, 128>{}); });
    return values;
}

template <class Real>
void expectConstants() {
    const auto cosines = namedConstants<Real, Trig::cosine>();
    const auto sines = namedConstants<Real, Trig::sine>();
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(cosines[at(i)], static_cast<Real>(cosPi(i, 128))) << i;
        EXPECT_EQ(sines[at(i)], static_cast<Real>(sinPi(i, 128))) << i;
    }
    EXPECT_EQ((valueOf<Real>(Constant<Trig::tangent, 5, 32>{})), static_cast<Real>(tanPi(5, 32)));
    EXPECT_EQ((valueOf<Real>(Constant<Trig::tangent, 7, 32>{})), static_cast<Real>(tanPi(7, 32)));
}

TEST(Dct4Constants, AreRoundedOnce) {
    expectConstants<float>();
    expectConstants<double>();
}

TEST(Dct4Constants, OfLength4AreTheListedOnes) {
    EXPECT_NEAR((valueOf<double>(Constant<Trig::tangent, 7, 32>{})), 0.8206787908, 5e-11);
    EXPECT_NEAR((valueOf<double>(Constant<Trig::sine, 7, 16>{})), 0.9807852804, 5e-11);
    const auto expectFloat = [](float value, double printed) {
        EXPECT_NEAR(static_cast<double>(value), printed, 5e-11);
    };
    expectFloat(valueOf<float>(Constant<Trig::tangent, 7, 32>{}), 0.8206787705);
    expectFloat(valueOf<float>(Constant<Trig::sine, 7, 16>{}), 0.9807852507);
    expectFloat(valueOf<float>(Constant<Trig::tangent, 5, 32>{}), 0.5345111489);
    expectFloat(valueOf<float>(Constant<Trig::sine, 5, 16>{}), 0.8314695954);
    expectFloat(valueOf<float>(Constant<Trig::cosine, 1, 4>{}), 0.7071067691);
}

}  // namespace
}  // namespace orvgen::test::dct4
