#include "spectrum.h"

#include <orvgen.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <numbers>

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
          windows_((length - N) / hop + 1) {}

    // Takes samples; transforms every whole pair of windows among them.
    void add(const std::vector<float>& block) {
        samples_.insert(samples_.end(), block.begin(), block.end());
        std::size_t start = 0;
        const auto step = static_cast<std::size_t>(hop_);
        for (; start + step + N <= samples_.size(); start += 2 * step) {
            transformPair(&samples_[start], &samples_[start + step]);
        }
        samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(start));
    }

    // The last window may stand alone: it is transformed together with silence.
    void finish() {
        static constexpr std::array<float, N> silence{};
        if (samples_.size() >= N) transformPair(samples_.data(), silence.data());
    }

    std::int64_t transforms() const { return transforms_; }
    std::int64_t windows() const { return window_; }
    double seconds() const { return std::chrono::duration<double>(spent_).count(); }
    const std::vector<Column>& columns() const { return columns_; }

  private:
    // Two windows of real samples a and b in one complex transform of a + i b: with Z its result,
    // A[k] = (Z[k] + conj Z[N-k]) / 2 and B[k] = (Z[k] - conj Z[N-k]) / 2i.
    void transformPair(const float* a, const float* b) {
        for (std::size_t n = 0; n < N; ++n) x_[n] = {a[n] * window[n], b[n] * window[n]};

        const auto begin = std::chrono::steady_clock::now();
        const OrvStatus status = orvgDFTFwd_CToC_64_32fc(x_.data(), z_.data(), orvScaleNone);
        spent_ += std::chrono::steady_clock::now() - begin;
        if (status != orvOk) throw std::runtime_error("the transform failed");
        ++transforms_;

        std::array<double, bins> powerA{};
        std::array<double, bins> powerB{};
        for (std::size_t k = 0; k < bins; ++k) {
            const Orv32fc p = z_[k];
            const Orv32fc q = z_[(N - k) % N];
            powerA[k] = 0.25 * (sqr(p.re + q.re) + sqr(p.im - q.im));
            powerB[k] = 0.25 * (sqr(p.im + q.im) + sqr(q.re - p.re));
        }
        put(powerA, a);
        if (b != a + hop_) return;
        put(powerB, b);
    }

    static double sqr(float v) { return static_cast<double>(v) * v; }

    void put(const std::array<double, bins>& power, const float* samples) {
        const auto last = static_cast<std::int64_t>(columns_.size()) - 1;
        const auto c = std::min(last, window_ * (last + 1) / std::max<std::int64_t>(windows_, 1));
        Column& column = columns_[static_cast<std::size_t>(c)];
        for (std::size_t k = 0; k < bins; ++k) column.power[k] += power[k];
        for (int n = 0; n < N; ++n) column.peak = std::max(column.peak, std::abs(samples[n]));
        ++column.windows;
        ++window_;
    }

    inline static const Window window = hann();

    std::vector<Column> columns_;
    int hop_;
    std::int64_t windows_;  // that are expected
    std::int64_t window_ = 0;
    std::int64_t transforms_ = 0;
    std::chrono::steady_clock::duration spent_{};
    std::vector<float> samples_;
    alignas(16) std::array<Orv32fc, N> x_{};
    alignas(16) std::array<Orv32fc, N> z_{};
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
    analyser.finish();
    if (analyser.windows() == 0) {
        throw BadInput("the recording is too short: one transform takes " + std::to_string(N) +
                       " samples, and it has " + std::to_string(done));
    }

    Spectrogram s;
    s.hop = static_cast<int>(hop);
    s.transforms = analyser.transforms();
    s.windows = analyser.windows();
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
