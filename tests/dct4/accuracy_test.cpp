// SPDX-License-Identifier: MIT
// Errors against the defining sum in binary128, angles reduced exactly.
#include <cmath>

#include "dct4/plan.h"
#include "dct4/quad.h"

namespace orvgen::test::dct4 {
namespace {

// Errors of all outputs of a run.
struct Errors {
    Errors(std::int32_t N, unsigned seed) {
        const std::vector<Real> x = randomVector(N, seed);
        const std::vector<Real> y = Plan(N)(x);
        const std::vector<Quad> exact = fastDct4({x.begin(), x.end()});
        double squares = 0, norm = 0;
        for (std::size_t k = 0; k < y.size(); ++k) {
            const auto error = static_cast<double>(magnitude(static_cast<Quad>(y[k]) - exact[k]));
            errors.push_back(error);
            squares += error * error;
            norm += static_cast<double>(exact[k] * exact[k]);
        }
        rms = std::sqrt(squares / N);
        relative = std::sqrt(squares / norm);
    }

    double share(double bound) const {
        double inside = 0;
        for (const double error : errors) inside += error <= bound;
        return inside / static_cast<double>(errors.size());
    }

    std::vector<double> errors;
    double rms, relative;
};

void expectAccurate(std::int32_t N, unsigned seed) {
    const Errors found(N, seed);
    testing::Test::RecordProperty("relative_in_units_" + std::to_string(N),
                                  std::to_string(found.relative / unitRoundoff));
    EXPECT_LE(found.relative, 2 * unitRoundoff * std::sqrt(std::log2(N))) << N;
    if (familyBits == 64) {
        EXPECT_TRUE(N > 8192 || found.share(2e-11) == 1.0) << N;
        return;
    }
    if (const DataRow* row = table("growth").find("length", N)) {
        EXPECT_GE(found.share(row->number("within_32f")), row->number("share_32f")) << N;
        EXPECT_EQ(found.share(row->number("beyond_32f")), 1.0) << N;
        const double rms = row->number("rms_32f");
        EXPECT_TRUE(rms == 0 || found.rms <= rms) << N << ": " << found.rms;
    }
}

TEST(Dct4Error, IsWithinItsBoundsAtEveryLength) {
    for (std::int32_t N = 2; N <= 131072; N *= 2) {
        const unsigned seeds = N <= 1024 ? 5 : N <= 4096 ? 2 : 1;
        for (unsigned seed = 1; seed <= seeds; ++seed) expectAccurate(N, seed);
    }
}

// Applied twice, the transform is N/2 times the identity.
TEST(Dct4Transform, AppliedTwiceIsHalfItsLength) {
    for (std::int32_t N = 2; N <= 131072; N *= 2) {
        Plan plan(N);
        const std::vector<Real> x = randomVector(N, 3);
        const std::vector<Real> y = plan(plan(x));
        double squares = 0, norm = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double expected = 0.5 * N * static_cast<double>(x[i]);
            const double error = static_cast<double>(y[i]) - expected;
            squares += error * error;
            norm += expected * expected;
        }
        EXPECT_LE(std::sqrt(squares / norm), 4 * unitRoundoff * std::sqrt(std::log2(N) + 1)) << N;
    }
}

}  // namespace
}  // namespace orvgen::test::dct4
