// SPDX-License-Identifier: MIT
#include "spectrum.h"

#include <orvgen_batch.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <numbers>

#include "../common/columns.h"
#include "bad_input.h"
#include "resampler.h"

namespace {

constexpr int N = Spectrogram::points;
constexpr std::size_t bins = Spectrogram::bins;

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

// Power in each bin, summed over windows.
struct Power {
    std::array<double, bins> sum{};
    std::int64_t windows = 0;

    void merge(const Power& other) {
        for (std::size_t k = 0; k < bins; ++k) sum[k] += other.sum[k];
        windows += other.windows;
    }
};

struct Peak {
    float value = 0;
    void merge(const Peak& other) { value = std::max(value, other.value); }
};

// Transforms and the time that one takes: the least of all blocks, as whatever else the machine
// does only adds to it.
struct Stopwatch {
    double nanoseconds = std::numeric_limits<double>::infinity();
    std::size_t transforms = 0;

    template <class Work>
    void time(std::size_t count, const Work& work) {
        // The first one brings code and pages in, which is not what is timed.
        for (int turn = transforms == 0 ? 0 : 1; turn < 2; ++turn) {
            const auto begin = std::chrono::steady_clock::now();
            const OrvStatus status = work();
            const std::chrono::duration<double, std::nano> spent =
                std::chrono::steady_clock::now() - begin;
            if (status != orvOk) throw std::runtime_error("the transforms failed");
            if (turn == 1)
                nanoseconds = std::min(nanoseconds, spent.count() / static_cast<double>(count));
        }
        transforms += count;
    }
    void merge(const Stopwatch& other) {
        nanoseconds = std::min(nanoseconds, other.nanoseconds);
        transforms += other.transforms;
    }
};

// Transforms every whole window of a channel.
class Windows {
  public:
    explicit Windows(int hop) : hop_(static_cast<std::size_t>(hop)) {}

    // Takes samples; hands the power of every window that they complete to `found`.
    template <class Found>
    void add(const std::vector<float>& block, const Found& found) {
        samples_.insert(samples_.end(), block.begin(), block.end());
        x_.clear();
        std::size_t start = 0;
        for (; start + N <= samples_.size(); start += hop_)
            for (std::size_t n = 0; n < N; ++n) x_.push_back(samples_[start + n] * window[n]);
        samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(start));

        const std::size_t count = x_.size() / N;
        transform(count);
        for (std::size_t t = 0; t < count; ++t) {
            Power power;
            power.windows = 1;
            for (std::size_t k = 0; k < bins; ++k)
                power.sum[k] = sqr(z_[t * bins + k].re) + sqr(z_[t * bins + k].im);
            // In these two a sine's positive and negative frequency fall together.
            power.sum.front() /= 4;
            power.sum.back() /= 4;
            found(power);
        }
    }
    const Stopwatch& batches() const { return batches_; }
    const Stopwatch& singles() const { return singles_; }

  private:
    // The rows of x_ by one call; of each the half spectrum, bins 0 to N/2, as a row of z_.
    void transform(std::size_t count) {
        if (count == 0) return;
        z_.resize(count * bins);
        batches_.time(count, [&] {
            return orvgBatchDFTFwd_RToCCS_32f(x_.data(), 1, N, z_.data(), 1, bins, N, count,
                                              orvScaleNone);
        });
        constexpr std::size_t tried = 10000;
        if (singles_.transforms < tried) loop(count);
    }

    // The same by single calls, for the time that they take.
    void loop(std::size_t count) {
        single_.resize(z_.size());
        singles_.time(count, [&] {
            OrvStatus status = orvOk;
            for (std::size_t t = 0; t < count && status == orvOk; ++t)
                status = orvgDFTFwd_RToCCS_64_32f(&x_[t * N], &single_[t * bins].re, orvScaleNone);
            return status;
        });
    }

    static double sqr(float v) { return static_cast<double>(v) * v; }

    inline static const Window window = hann();

    std::size_t hop_;
    Stopwatch batches_, singles_;
    std::vector<float> samples_;
    std::vector<float> x_;
    std::vector<Orv32fc> z_, single_;
};

// The samples of one channel on their way to powers.
class Channel {
  public:
    Channel(double ratio, int hop) : windows_(hop) {
        if (ratio < 1) resampler_.emplace(ratio);
    }

    template <class Found>
    void add(const std::vector<float>& block, bool last, const Found& found) {
        if (resampler_) resampler_->convert(block, last, converted_);
        windows_.add(resampler_ ? converted_ : block, found);
    }
    const Windows& windows() const { return windows_; }

  private:
    Windows windows_;
    std::optional<Resampler> resampler_;
    std::vector<float> converted_;
};

// What one panel of the picture shows: a channel, or all of them joined.
class Panel {
  public:
    // Every block of every channel of the panel; then done() with the block.
    void add(Channel& channel, const std::vector<float>& block, bool last) {
        peaks_.resize(std::max(peaks_.size(), block.size()));
        for (std::size_t i = 0; i < block.size(); ++i) peaks_[i].merge({std::abs(block[i])});
        std::size_t i = 0;
        channel.add(block, last, [&](const Power& power) {
            if (i == powers_.size()) powers_.emplace_back();
            powers_[i++].merge(power);
        });
    }
    void done() {
        for (const Peak& peak : peaks_) peaks.add(peak);
        for (const Power& power : powers_) powers.add(power);
        peaks_.clear();
        powers_.clear();
    }

    Columns<Peak> peaks{Spectrogram::columns};    // of frames
    Columns<Power> powers{Spectrogram::columns};  // of windows

  private:
    std::vector<Peak> peaks_;
    std::vector<Power> powers_;
};

std::vector<Spectrogram::Column> columnsOf(const Panel& panel, const Spectrogram& s) {
    std::vector<Spectrogram::Column> columns(Spectrogram::columns);
    const auto frames = static_cast<double>(panel.peaks.count());
    // Window i has its middle at (hop i + N/2) / rate.
    const auto windowAt = [&](double second) { return (second * s.rate - N / 2.0) / s.hop + 0.5; };
    for (std::size_t c = 0; c < columns.size(); ++c) {
        const double first = static_cast<double>(c) / static_cast<double>(columns.size());
        const double last = static_cast<double>(c + 1) / static_cast<double>(columns.size());
        columns[c].peak = panel.peaks.over(first * frames, last * frames).value;
        const Power power =
            panel.powers.over(windowAt(first * s.seconds), windowAt(last * s.seconds));
        for (std::size_t k = 0; k < bins; ++k) {
            const double mean = power.sum[k] / static_cast<double>(power.windows);
            columns[c].db[k] = 10 * std::log10(mean + 1e-20);
        }
    }
    return columns;
}

}  // namespace

int Spectrogram::binsShown() const {
    return std::min(bins, static_cast<int>(std::floor(top / binWidth() + 1e-9)) + 1);
}

Spectrogram::Loudest Spectrogram::loudest() const {
    Loudest most{-300, 0, 0};
    for (const auto& channel : channels) {
        for (std::size_t c = 0; c < columns; ++c) {
            for (int k = 0; k < binsShown(); ++k) {
                const auto bin = static_cast<std::size_t>(k);
                const double db = channel[c].db[bin];
                if (db <= most.db) continue;
                // Few windows fill many columns: the middle of those that show this one.
                std::size_t end = c + 1;
                while (end < columns && channel[end].db[bin] == db) ++end;
                const double middle = static_cast<double>(c + end) / 2 / columns * seconds;
                most = {db, k * binWidth(), middle};
            }
        }
    }
    return most;
}

Spectrogram analyse(Recording& recording, std::optional<double> band, const Progress& progress) {
    Spectrogram s;
    const double whole = recording.rate() / 2;
    s.top = std::min(band.value_or(whole), whole);
    const double ratio = std::min(1.0, s.top / whole / Resampler::passed);
    s.resampled = ratio < 1;
    s.rate = recording.rate() * ratio;
    s.joined = recording.channels() > Spectrogram::channelsShown;
    // A quarter of a window apart, and closer on a recording that is known to be short, so that
    // every column has a window.
    s.hop = N / 4;
    const double expected = static_cast<double>(recording.announced()) * ratio;
    if (expected > 0 && expected < static_cast<double>(s.hop) * Spectrogram::columns)
        s.hop = std::max(1, static_cast<int>((expected - N) / Spectrogram::columns));

    std::vector<Channel> channels;
    for (std::size_t c = 0; c < recording.channels(); ++c) channels.emplace_back(ratio, s.hop);
    std::vector<Panel> panels(s.joined ? 1 : channels.size());
    constexpr std::size_t framesPerBlock = 1 << 14;
    Recording::Block block;
    for (bool more = true; more;) {
        more = recording.read(framesPerBlock, block);
        for (std::size_t c = 0; c < channels.size(); ++c)
            panels[c % panels.size()].add(channels[c], block[c], !more);
        for (Panel& panel : panels) panel.done();
        progress(recording.part());
    }
    progress(1);
    if (panels.front().powers.count() == 0) {
        throw BadInput("the recording is too short: one transform takes " + std::to_string(N) +
                       " samples" + (s.resampled ? " of the resampled band" : "") +
                       ", and it has " + std::to_string(recording.frames()));
    }

    s.seconds = static_cast<double>(recording.frames()) / recording.rate();
    for (const Panel& panel : panels) s.channels.push_back(columnsOf(panel, s));
    s.transforms = static_cast<std::int64_t>(panels.front().powers.count() * channels.size());
    Stopwatch batches, singles;
    for (const Channel& channel : channels) {
        batches.merge(channel.windows().batches());
        singles.merge(channel.windows().singles());
    }
    s.batchNanoseconds = batches.nanoseconds;
    s.singleNanoseconds = singles.nanoseconds;
    return s;
}
