#include "accuracy.h"

#include <cmath>
#include <random>
#include <stdexcept>

#include "direct_transform.h"
#include "orvgen.h"

namespace orvgen::test {

namespace {

constexpr int kRounds = 16;

template <class Real>
Accuracy measure(const ListedKernel& k) {
    std::mt19937_64 random(static_cast<unsigned>(k.length));
    std::uniform_real_distribution<Real> uniform(-1, 1);
    const Quad u = k.single ? Quad(std::ldexp(1.0, -24)) : Quad(std::ldexp(1.0, -53));
    Quad errors = 0, results = 0, largest = 0;
    std::size_t count = 0;
    for (int round = 0; round < kRounds; ++round) {
        std::vector<Real> src(k.srcCount + k.srcBeyond), dst(k.dstCount);
        for (Real& x : src) x = uniform(random);
        if (k.call(src.data(), dst.data(), orvScaleNone) != orvOk) throw std::runtime_error(k.name);
        const std::vector<Quad> exact = directTransform(k, {src.begin(), src.end()});
        for (std::size_t i = 0; i < exact.size(); ++i) {
            const Quad e = Quad(dst[i]) - exact[i];
            errors += e * e;
            results += exact[i] * exact[i];
            largest = std::max(largest, e < 0 ? -e : e);
        }
        count += exact.size();
    }
    const Quad rms = sqrtf128(results / static_cast<Quad>(count));
    return {static_cast<double>(sqrtf128(errors / results) / u),
            static_cast<double>(largest / rms / u)};
}

bool isPrime(int n) {
    for (int d = 2; d * d <= n; ++d)
        if (n % d == 0) return false;
    return true;
}

}  // namespace

Accuracy measureAccuracy(const ListedKernel& k) {
    return k.single ? measure<float>(k) : measure<double>(k);
}

double accuracyLimit(const ListedKernel& k) {
    const double growth = std::sqrt(std::log2(k.length));
    return k.length >= 7 && isPrime(k.length) ? 1.3 * growth : growth;
}

}  // namespace orvgen::test
