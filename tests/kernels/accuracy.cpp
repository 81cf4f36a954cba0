// SPDX-License-Identifier: MIT
#include "accuracy.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

#include "orvgen.h"
#include "wht/reference.h"

namespace orvgen::test {

namespace {

// As many inputs as give a thousand results, so that the figures of short lengths settle too.
int roundsOf(int length) { return std::max(16, 1024 / length); }

template <class Real>
Accuracy measure(const ListedKernel& k) {
    std::mt19937_64 random(static_cast<unsigned>(k.length));
    // Drawn finer than Real and rounded, so that all its bits are used; inputs on a grid would make
    // the first sums exact.
    std::uniform_real_distribution<long double> uniform(-1, 1);
    const Quad u = k.single ? Quad(std::ldexp(1.0, -24)) : Quad(std::ldexp(1.0, -53));
    ErrorSum sum;
    for (int round = 0; round < roundsOf(k.length); ++round) {
        std::vector<Real> src(k.srcCount + k.srcBeyond), dst(k.dstCount);
        for (Real& x : src) x = static_cast<Real>(uniform(random));
        if (k.call(src.data(), dst.data(), orvScaleNone) != orvOk) throw std::runtime_error(k.name);
        const std::vector<Quad> exact = directTransform(k, {src.begin(), src.end()});
        for (std::size_t i = 0; i < exact.size(); ++i) sum.add(Quad(dst[i]), exact[i]);
    }
    return sum.inUnitsOf(u);
}

bool isPrime(int n) {
    for (int d = 2; d * d <= n; ++d)
        if (n % d == 0) return false;
    return true;
}

}  // namespace

void ErrorSum::add(Quad result, Quad exact) {
    const Quad e = result - exact;
    errors_ += e * e;
    results_ += exact * exact;
    largest_ = std::max(largest_, e < 0 ? -e : e);
    ++count_;
}

Accuracy ErrorSum::inUnitsOf(Quad u) const {
    const Quad rms = sqrtf128(results_ / static_cast<Quad>(count_));
    return {static_cast<double>(sqrtf128(errors_ / results_) / u),
            static_cast<double>(largest_ / rms / u), static_cast<double>(largest_ / u)};
}

Accuracy measureAccuracy(const ListedKernel& k) {
    return k.single ? measure<float>(k) : measure<double>(k);
}

template <class T>
Accuracy measureAccuracy(const OrderFunctions<T>& f) {
    constexpr int rounds = 16;
    std::mt19937_64 random(static_cast<unsigned>(f.order));
    std::uniform_real_distribution<long double> uniform(-1, 1);
    std::vector<T> src(f.points()), dst(f.points());
    std::vector<std::uint8_t> buffer(f.bufferBytes() + 1);
    ErrorSum sum;
    for (int round = 0; round < rounds; ++round) {
        for (T& x : src) x = static_cast<T>(uniform(random));
        if (f.kernel(src.data(), dst.data(), orvScaleNone, buffer.data()) != orvOk)
            throw std::runtime_error(f.name);
        std::vector<Quad> exact(src.begin(), src.end());
        applyLayers(exact, 0, f.order);
        for (std::size_t i = 0; i < exact.size(); ++i) sum.add(Quad(dst[i]), exact[i]);
    }
    return sum.inUnitsOf(Quad(std::numeric_limits<T>::epsilon() / 2));
}

template Accuracy measureAccuracy(const OrderFunctions<Orv32f>& f);
template Accuracy measureAccuracy(const OrderFunctions<Orv64f>& f);

double accuracyLimit(int points) {
    const double growth = std::sqrt(std::log2(points));
    return points >= 7 && isPrime(points) ? 1.3 * growth : growth;
}

}  // namespace orvgen::test
