// Errors against the defining sum in binary128, angles reduced exactly.
#include <cmath>
#include <random>

#include "dct4/plan.h"
#include "dct4/quad.h"

namespace orvgen::test::dct4 {
namespace {

// Errors of a run: all outputs up to 8192, a random choice of 160 beyond.
struct Errors {
    explicit Errors(std::int32_t N, unsigned seed) {
        const std::vector<Real> x = randomVector(N, seed);
        Plan plan(N);
        const std::vector<Real> y = plan(x);
        const DirectDct4 direct(N);
        std::mt19937_64 generator(seed);
        const bool all = N <= 8192;
        const std::int32_t count = all ? N : 160;
        double squares = 0, norm = 0;
        for (std::int32_t i = 0; i < count; ++i) {
            const std::int64_t k =
                all ? i : static_cast<std::int64_t>(generator() % static_cast<unsigned>(N));
            const Quad exact = direct(x, k);
            const auto error = static_cast<double>(
                magnitude(static_cast<Quad>(y[static_cast<std::size_t>(k)]) - exact));
            errors.push_back(error);
            squares += error * error;
            norm += static_cast<double>(exact * exact);
        }
        rms = std::sqrt(squares / count);
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
    const std::string key = std::to_string(N);
    testing::Test::RecordProperty("relative_in_units_" + key,
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

TEST(Accuracy, UpTo1024) {
    for (std::int32_t N = 2; N <= 1024; N *= 2) {
        for (unsigned seed = 1; seed <= 5; ++seed) expectAccurate(N, seed);
    }
}
TEST(Accuracy, Of2048) { expectAccurate(2048, 1), expectAccurate(2048, 2); }
TEST(Accuracy, Of4096) { expectAccurate(4096, 1), expectAccurate(4096, 2); }
TEST(Accuracy, Of8192) { expectAccurate(8192, 1); }
TEST(Accuracy, Of16384) { expectAccurate(16384, 1); }
TEST(Accuracy, Of32768) { expectAccurate(32768, 1); }
TEST(Accuracy, Of65536) { expectAccurate(65536, 1); }
TEST(Accuracy, Of131072) { expectAccurate(131072, 1); }

// Applied twice, the transform is N/2 times the identity.
TEST(Accuracy, TwiceIsHalfTheLength) {
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
