// SPDX-License-Identifier: MIT
#include "link.h"

#include <orvgen.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <stdexcept>

namespace {

using Block = std::array<Complex, points>;
using Taps = std::array<Complex, prefix>;

template <class Transform>
Block transformed(const Block& x, const Transform& transform) {
    std::array<Orv32fc, points> in{}, out{};
    for (std::size_t i = 0; i < points; ++i) in[i] = {x[i].real(), x[i].imag()};
    if (transform(in.data(), out.data(), orvScaleBySqrtN) != orvOk) {
        throw std::runtime_error("the transform failed");
    }
    Block y;
    for (std::size_t i = 0; i < points; ++i) y[i] = {out[i].re, out[i].im};
    return y;
}

// Gray-coded square constellation of mean energy 1. Along each axis the first bit is the sign and
// the second, if any, tells the inner level from the outer.
class Constellation {
  public:
    explicit Constellation(int bits)
        : bits_(bits), unit_(static_cast<float>(bits == 2 ? std::sqrt(0.5) : std::sqrt(0.1))) {}

    Complex point(unsigned word) const {
        const unsigned half = static_cast<unsigned>(bits_) / 2;
        return {level(word >> half), level(word & ((1U << half) - 1))};
    }
    unsigned decide(Complex z) const {
        return nearest(z.real()) << (bits_ / 2) | nearest(z.imag());
    }
    float level(unsigned word) const {
        if (bits_ == 2) return word == 0 ? unit_ : -unit_;
        return ((word & 2) == 0 ? unit_ : -unit_) * ((word & 1) == 0 ? 1.0F : 3.0F);
    }
    unsigned levels() const { return bits_ == 2 ? 2 : 4; }
    float unit() const { return unit_; }

  private:
    unsigned nearest(float v) const {
        const unsigned sign = v < 0 ? 1 : 0;
        return bits_ == 2 ? sign : sign << 1 | (std::abs(v) > 2 * unit_ ? 1U : 0U);
    }
    int bits_;
    float unit_;
};

// A direct path and five echoes, the last 11 samples late; of energy 1 together.
Taps makeTaps() {
    Taps taps{};
    taps[0] = {0.80F, 0.10F};
    taps[1] = {-0.25F, 0.35F};
    taps[2] = {0.20F, 0.15F};
    taps[4] = {0.05F, -0.28F};
    taps[7] = {-0.16F, 0.08F};
    taps[11] = {0.06F, 0.09F};
    float energy = 0;
    for (const Complex tap : taps) energy += std::norm(tap);
    for (Complex& tap : taps) tap /= std::sqrt(energy);
    return taps;
}

// Straight from the definition, so that the estimate has something independent to be held against.
std::complex<double> response(const Taps& taps, int carrier) {
    std::complex<double> sum = 0;
    for (std::size_t d = 0; d < taps.size(); ++d) {
        const double angle = -2 * std::numbers::pi * carrier * static_cast<double>(d) / points;
        sum += std::complex<double>(taps[d]) * std::polar(1.0, angle);
    }
    return sum;
}

// The probability that a normal variable exceeds x standard deviations.
double tail(double x) { return std::erfc(x / std::numbers::sqrt2) / 2; }

enum class Channel { known, estimated };

// The bit error rate on a carrier of the given gain |H|^2. With the channel estimated from a number
// of training symbols, the estimate's error weighs with the energy of the point sent.
double errorRate(const Constellation& c, double noise, double gain, Channel channel) {
    const double u = static_cast<double>(c.unit());
    double sum = 0;
    for (unsigned i = 0; i < c.levels(); ++i) {
        for (unsigned j = 0; j < c.levels(); ++j) {
            const double a = std::abs(static_cast<double>(c.level(i)));
            const double b = static_cast<double>(c.level(j));
            const double more =
                channel == Channel::estimated ? (a * a + b * b) / static_cast<double>(training) : 0;
            const double s = std::sqrt(noise * (1 + more) / (2 * gain));
            sum += tail(a / s);
            if (c.levels() == 2) continue;
            sum += a < 2 * u ? tail((2 * u - a) / s) + tail((2 * u + a) / s)
                             : tail((a - 2 * u) / s) - tail((a + 2 * u) / s);
        }
    }
    const double bitsOfAxis = c.levels() == 2 ? 1 : 2;
    return sum / (bitsOfAxis * c.levels() * c.levels());
}

Theory makeTheory(const Constellation& c, double noise,
                  const std::array<std::complex<double>, carriers>& channel) {
    Theory theory;
    if (noise <= 0) return theory;
    theory.flat = errorRate(c, noise, 1, Channel::known);
    for (std::size_t k = 0; k < carriers; ++k) {
        const double gain = std::norm(channel[k]);
        theory.byCarrier[k] = errorRate(c, noise, gain, Channel::estimated);
        theory.known += errorRate(c, noise, gain, Channel::known) / carriers;
        theory.estimated += theory.byCarrier[k] / carriers;
    }
    return theory;
}

// What is sent: a symbol's carriers, and for data the bits behind them.
struct Symbol {
    bool known = false;  // a training symbol
    std::array<unsigned, carriers> words{};
    std::array<Complex, carriers> carrier{};
};

std::vector<Symbol> makeSymbols(const Settings& settings, const Constellation& data,
                                std::mt19937_64& random) {
    const Constellation qpsk(2);  // every training point of the same energy
    std::vector<Symbol> symbols;
    const auto append = [&](const Constellation& c, int bits) -> Symbol& {
        Symbol& symbol = symbols.emplace_back();
        for (std::size_t k = 0; k < carriers; ++k) {
            symbol.words[k] = static_cast<unsigned>(random() >> (64 - bits));
            symbol.carrier[k] = c.point(symbol.words[k]);
        }
        return symbol;
    };
    for (std::size_t i = 0; i < settings.symbols; ++i) {
        for (std::size_t t = 0; i % frame == 0 && t < training; ++t) append(qpsk, 2).known = true;
        append(data, settings.bits);
    }
    return symbols;
}

std::vector<Complex> modulate(const std::vector<Symbol>& symbols) {
    std::vector<Complex> samples;
    samples.reserve(symbols.size() * (prefix + points));
    for (const Symbol& symbol : symbols) {
        Block bins{};
        for (std::size_t k = 0; k < carriers; ++k) bins[carrierBin(k)] = symbol.carrier[k];
        const Block block = transformed(bins, orvgDFTInv_CToC_64_32fc);
        samples.insert(samples.end(), block.end() - prefix, block.end());
        samples.insert(samples.end(), block.begin(), block.end());
    }
    return samples;
}

// The echoes run on from symbol to symbol, as in the air.
std::vector<Complex> propagate(const std::vector<Complex>& x, const Taps& taps, double noise,
                               std::mt19937_64& random) {
    std::normal_distribution<float> normal;
    const auto amplitude = static_cast<float>(std::sqrt(noise / 2));
    std::vector<Complex> y(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        for (std::size_t d = 0; d < std::min(taps.size(), i + 1); ++d) y[i] += taps[d] * x[i - d];
        const float re = normal(random), im = normal(random);
        y[i] += amplitude * Complex(re, im);
    }
    return y;
}

std::size_t bitsIn(unsigned word) { return static_cast<std::size_t>(__builtin_popcount(word)); }

void receive(const std::vector<Complex>& samples, const std::vector<Symbol>& symbols,
             const Constellation& constellation, Outcome& outcome) {
    std::array<Complex, carriers> estimate{};
    double energy = 0, error = 0;
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        const Symbol& sent = symbols[i];
        Block block;
        std::copy_n(samples.begin() + static_cast<std::ptrdiff_t>(i * (prefix + points) + prefix),
                    points, block.begin());
        const Block bins = transformed(block, orvgDFTFwd_CToC_64_32fc);
        if (sent.known && (i == 0 || !symbols[i - 1].known)) estimate = {};
        if (i == training) outcome.estimate = estimate;
        for (std::size_t k = 0; k < carriers; ++k) {
            const Complex received = bins[carrierBin(k)];
            if (sent.known) {
                estimate[k] += received / sent.carrier[k] / static_cast<float>(training);
                continue;
            }
            const Complex equalised = received / estimate[k];
            outcome.before.push_back(received);
            outcome.after.push_back(equalised);
            energy += static_cast<double>(std::norm(sent.carrier[k]));
            error += static_cast<double>(std::norm(equalised - sent.carrier[k]));
            const std::size_t wrong = bitsIn(constellation.decide(equalised) ^ sent.words[k]);
            outcome.wrong += wrong;
            outcome.wrongByCarrier[k] += wrong;
        }
    }
    outcome.errorVector = std::sqrt(error / energy);
}

}  // namespace

Outcome runLink(const Settings& settings) {
    const Constellation constellation(settings.bits);
    const double noise = settings.snr ? std::pow(10, -*settings.snr / 10) : 0;
    const Taps taps = makeTaps();
    std::mt19937_64 random(settings.seed);

    Outcome outcome;
    for (std::size_t k = 0; k < carriers; ++k) {
        outcome.channel[k] = response(taps, carrierNumber(k));
    }
    outcome.theory = makeTheory(constellation, noise, outcome.channel);
    const std::vector<Symbol> symbols = makeSymbols(settings, constellation, random);
    const std::vector<Complex> received = propagate(modulate(symbols), taps, noise, random);
    outcome.sent = settings.symbols * carriers * static_cast<std::size_t>(settings.bits);
    receive(received, symbols, constellation, outcome);
    return outcome;
}
