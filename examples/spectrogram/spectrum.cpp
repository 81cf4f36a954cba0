#include "spectrum.h"

#include <orvgen.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <numbers>

#include "../common/program.h"

namespace {

constexpr int N = Spectrogram::points;
constexpr int bins = Spectrogram::bins;

using Window = std::array<float, N>;

// Hann's window, so scaled that a sine of full scale has the magnitude 1 in its bin.
Window hann() {
    Window w{};
    for (int n = 0; n < N; ++n) {
        const double x = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * n / N);
        w[static_cast<std::size_t>(n)] = static_cast<float>(x * 4 / N);
    }
    return w;
}

// Power in each bin, summed over the windows of one column.
struct Column {
    std::array<double, bins> power{};
    std::int64_t windows = 0;
    float peak = 0;
};

class Analyser {
  public:
    Analyser(int columns, int hop, std::int64_t length)
        : columns_(static_cast<std::size_t>(columns)),
          hop_(hop),
          expected_((length - N) / hop + 1) {}

    // Takes samples; transforms every whole window among them.
    void add(const std::vector<float>& block) {
        samples_.insert(samples_.end(), block.begin(), block.end());
        std::size_t start = 0;
        for (; start + N <= samples_.size(); start += static_cast<std::size_t>(hop_)) {
            transform(&samples_[start]);
        }
        samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(start));
    }

    std::int64_t transforms() const { return transforms_; }
    double seconds() const { return std::chrono::duration<double>(spent_).count(); }
    const std::vector<Column>& columns() const { return columns_; }

  private:
    // One window of real samples; their half spectrum comes as the bins 0 to N/2 in (re, im) pairs.
    void transform(const float* samples) {
        for (std::size_t n = 0; n < N; ++n) x_[n] = samples[n] * window[n];

        const auto begin = std::chrono::steady_clock::now();
        const OrvStatus status = orvgDFTFwd_RToCCS_64_32f(x_.data(), z_.data(), orvScaleNone);
        spent_ += std::chrono::steady_clock::now() - begin;
        if (status != orvOk) throw std::runtime_error("the transform failed");

        // The last column takes what the announced length did not foresee.
        const auto last = static_cast<std::int64_t>(columns_.size()) - 1;
        const auto c =
            std::min(last, transforms_ * (last + 1) / std::max<std::int64_t>(expected_, 1));
        Column& column = columns_[static_cast<std::size_t>(c)];
        for (std::size_t k = 0; k < bins; ++k)
            column.power[k] += sqr(z_[2 * k]) + sqr(z_[2 * k + 1]);
        for (int n = 0; n < N; ++n) column.peak = std::max(column.peak, std::abs(samples[n]));
        ++column.windows;
        ++transforms_;
    }

    static double sqr(float v) { return static_cast<double>(v) * v; }

    inline static const Window window = hann();

    std::vector<Column> columns_;
    int hop_;
    std::int64_t expected_;  // transforms, by the announced length
    std::int64_t transforms_ = 0;
    std::chrono::steady_clock::duration spent_{};
    std::vector<float> samples_;
    std::array<float, N> x_{};
    std::array<float, N + 2> z_{};
};

}  // namespace

Spectrogram analyse(Recording& recording, int columns, const Progress& progress) {
    // A quarter of a window apart, and closer on a short recording, so that every column has a
    // window.
    const auto hop = std::clamp<std::int64_t>((recording.length() - N) / columns, 1, N / 4);
    Analyser analyser(columns, static_cast<int>(hop), recording.length());
    std::vector<float> block;
    std::int64_t done = 0;
    while (recording.read(block)) {
        analyser.add(block);
        done += static_cast<std::int64_t>(block.size());
        const auto all = static_cast<double>(std::max<std::int64_t>(recording.length(), 1));
        progress(std::min(1.0, static_cast<double>(done) / all));
    }
    if (analyser.transforms() == 0) {
        throw BadInput("the recording is too short: one transform takes " + std::to_string(N) +
                       " samples, and it has " + std::to_string(done));
    }

    Spectrogram s;
    s.hop = static_cast<int>(hop);
    s.transforms = analyser.transforms();
    s.rate = recording.rate();
    s.seconds = recording.seconds();
    s.transformSeconds = analyser.seconds();
    for (const Column& c : analyser.columns()) {
        if (c.windows == 0) {
            // A very short recording: the column shows what stands left of it.
            s.db.push_back(s.db.back());
            s.peak.push_back(s.peak.back());
            continue;
        }
        std::vector<float> db;
        for (const double power : c.power) {
            const double mean = power / static_cast<double>(c.windows);
            db.push_back(static_cast<float>(10 * std::log10(mean + 1e-20)));
        }
        s.db.push_back(std::move(db));
        s.peak.push_back(c.peak);
    }
    return s;
}
