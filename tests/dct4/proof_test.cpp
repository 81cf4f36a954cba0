// The flows are the transforms they claim to be: run in binary128 on random and unit inputs, they
// give the defining sums to 30 digits. Their constants in both types are the rounded ones.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "dct4/flows/dct4.h"
#include "dct4/flows/joinstage.h"
#include "dct4/quad.h"

template <>
struct orvgen::dct4::Values<__float128> {
    template <Trig which, int num, int den>
    static __float128 of(Constant<which, num, den>) {
        namespace reference = orvgen::test::dct4;
        static const __float128 value = which == Trig::cosine ? reference::cosPi(num, den)
                                        : which == Trig::sine ? reference::sinPi(num, den)
                                                              : reference::tanPi(num, den);
        return value;
    }
    static __float128 zero() { return 0; }
};

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

template <int N>
void proveBody() {
    const DirectDct4 direct(N);
    onInputs(N, [&](const std::vector<Quad>& x) {
        ::orvgen::dct4::dct4<N, Quad>([&](auto j) { return x[j]; },
                                      [&](auto k, Quad y) { expectNear(y, direct(x, k)); });
    });
}

TEST(Proof, OfTheStraightLineBodies) {
    proveBody<2>();
    proveBody<4>();
    proveBody<8>();
    proveBody<16>();
    proveBody<32>();
}

template <int n>
void proveOddFrequency() {
    const CosineTable angles(n);
    onInputs(n, [&](const std::vector<Quad>& w) {
        oddFrequency<n, Quad>([&](auto t) { return w[t]; },
                              [&](auto c, Complex<Quad> z) {
                                  Quad re = 0, im = 0;
                                  for (int t = 0; t < n; ++t) {
                                      const int u = t < n / 2 ? t : t - n;
                                      const Quad sample = w[static_cast<std::size_t>(t)];
                                      re += sample * angles.cosine(u * (2 * c + 1));
                                      im += sample * angles.sine(u * (2 * c + 1));
                                  }
                                  expectNear(z.re, re);
                                  expectNear(z.im, im);
                              });
    });
}

TEST(Proof, OfTheOddFrequencyKernels) {
    proveOddFrequency<2>();
    proveOddFrequency<4>();
    proveOddFrequency<8>();
    proveOddFrequency<16>();
    proveOddFrequency<32>();
    proveOddFrequency<64>();
}

template <int r>
void proveStageTwo() {
    const CosineTable angles(2 * r);
    onInputs(2 * r, [&](const std::vector<Quad>& V) {
        stageTwo<r, Quad>(
            [&](auto p) {
                return Complex<Quad>{V[p], V[r + p]};
            },
            [&](auto u, Quad y) {
                Quad sum = 0;
                for (int p = 0; p < r; ++p) {
                    const int angle = u * (2 * p + 1);
                    const auto at = static_cast<std::size_t>(p);
                    sum += V[at] * angles.cosine(angle) - V[at + r] * angles.sine(angle);
                }
                expectNear(y, sum);
            });
    });
}

TEST(Proof, OfTheSecondStage) {
    proveStageTwo<1>();
    proveStageTwo<2>();
    proveStageTwo<4>();
    proveStageTwo<8>();
    proveStageTwo<16>();
    proveStageTwo<32>();
}

// One result number d = 2 of m' = 3: twiddles exp(i pi k (2d + 1) / n), n = 2 m' R.
template <int R>
void proveJoin() {
    constexpr int d = 2, m = 3, n = 2 * m * R;
    onInputs(2 * R, [&](const std::vector<Quad>& Z) {
        int position = 0;
        const auto turn = [&](Complex<Quad> z, int units) {
            return rotate(z, cosPi(units, n), sinPi(units, n));
        };
        joinStage<R, Quad>(
            [&](auto s) {
                return Complex<Quad>{Z[s], Z[R + s]};
            },
            [&](Complex<Quad> z) {
                const int k = R <= 8 ? position + 1 : position % 3 + 1;
                const int g = R <= 8 ? 0 : position / 3;
                ++position;
                return turn(z, k * (2 * d + 1 + 4 * m * g));
            },
            [&](Complex<Quad> z, auto k) { return turn(z, 4 * k * (2 * d + 1)); },
            [&](auto f, Complex<Quad> D) {
                Quad re = 0, im = 0;
                for (int s = 0; s < R; ++s) {
                    const int units = s * (2 * d + 1) + 4 * m * s * f;  // 2 pi s f / R too
                    const auto at = static_cast<std::size_t>(s);
                    const Complex<Quad> v = turn({Z[at], Z[at + R]}, units % (2 * n));
                    re += v.re;
                    im += v.im;
                }
                expectNear(D.re, re);
                expectNear(D.im, f < R / 2 ? im : -im);
            });
    });
}

TEST(Proof, OfTheJoins) {
    proveJoin<2>();
    proveJoin<4>();
    proveJoin<8>();
    proveJoin<16>();
    proveJoin<32>();
}

template <class Real>
void expectConstants() {
    for (int j = 0; j <= 64; ++j) {
        EXPECT_EQ(FixedAngles<Real>::cosines[j], static_cast<Real>(cosPi(j, 128))) << j;
    }
    EXPECT_EQ(FixedAngles<Real>::tangents[0], static_cast<Real>(tanPi(5, 32)));
    EXPECT_EQ(FixedAngles<Real>::tangents[1], static_cast<Real>(tanPi(7, 32)));
    unroll<256>([](auto i) {
        EXPECT_EQ((valueOf<Real>(Constant<Trig::cosine, i, 128>{})),
                  static_cast<Real>(cosPi(i, 128)));
        EXPECT_EQ((valueOf<Real>(Constant<Trig::sine, i, 128>{})),
                  static_cast<Real>(sinPi(i, 128)));
    });
}

TEST(Constants, AreRoundedOnce) {
    expectConstants<float>();
    expectConstants<double>();
}

TEST(Constants, OfLength4AreTheListedOnes) {
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
