// SPDX-License-Identifier: MIT
#include "spectra.h"

#include <orvgen_batch.h>

#include <cmath>
#include <numbers>

#include "../common/recording.h"
#include "bad_input.h"

namespace {

constexpr std::size_t N = 64;      // samples of a window
constexpr std::size_t hop = 80;    // from one window to the next
constexpr std::size_t bands = 32;  // bins 1 to 32 of a window

// The first channel.
std::vector<float> samplesOf(const std::string& path) {
    Recording recording(path);
    std::vector<float> samples;
    Recording::Block block;
    while (recording.read(1 << 14, block))
        samples.insert(samples.end(), block[0].begin(), block[0].end());
    return samples;
}

// Log powers of the bands, window after window.
std::vector<float> levelsOf(const std::vector<float>& samples) {
    if (samples.size() < N) return {};
    const std::size_t count = (samples.size() - N) / hop + 1;
    std::vector<float> windows(count * N), levels;
    std::vector<Orv32fc> bins(count * (N / 2 + 1));
    for (std::size_t w = 0; w < count; ++w)
        for (std::size_t n = 0; n < N; ++n) {
            const double hann =
                0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(n) / N);
            windows[w * N + n] = samples[w * hop + n] * static_cast<float>(hann);
        }
    if (orvgBatchDFTFwd_RToCCS_32f(windows.data(), 1, N, bins.data(), 1, N / 2 + 1, N, count,
                                   orvScaleNone) != orvOk)
        throw std::runtime_error("the transforms failed");
    for (std::size_t w = 0; w < count; ++w)
        for (std::size_t k = 1; k <= bands; ++k) {
            const Orv32fc z = bins[w * (N / 2 + 1) + k];
            levels.push_back(std::log10(z.re * z.re + z.im * z.im + 1e-10F));
        }
    return levels;
}

void centre(Vectors& v) {
    std::vector<double> mean(v.size);
    for (std::size_t i = 0; i < v.elements.size(); ++i) mean[i % v.size] += v.elements[i];
    for (double& m : mean) m /= static_cast<double>(v.count());
    for (std::size_t t = 0; t < v.count(); ++t) {
        float* x = &v.elements[t * v.size];
        double square = 1e-30;
        for (std::size_t i = 0; i < v.size; ++i) {
            x[i] -= static_cast<float>(mean[i]);
            square += static_cast<double>(x[i]) * x[i];
        }
        for (std::size_t i = 0; i < v.size; ++i) x[i] /= static_cast<float>(std::sqrt(square));
    }
}

}  // namespace

Vectors spectra(const std::vector<std::string>& recordings, std::size_t size) {
    constexpr std::size_t step = 4 * bands;  // from one vector to the next
    Vectors v{size, {}};
    for (const std::string& path : recordings) {
        const std::vector<float> levels = levelsOf(samplesOf(path));
        for (std::size_t at = 0; at + size <= levels.size(); at += step)
            v.elements.insert(v.elements.end(), levels.begin() + static_cast<std::ptrdiff_t>(at),
                              levels.begin() + static_cast<std::ptrdiff_t>(at + size));
    }
    if (v.count() < 100)
        throw BadInput("the recordings are too short: they give " + std::to_string(v.count()) +
                       " vectors of " + std::to_string(size) + " elements, and 100 are wanted");
    centre(v);
    return v;
}
