// SPDX-License-Identifier: MIT
#include "round_trip.h"

#include <memory>

#include "mdct.h"

namespace {

// One channel in one element type. Every M samples complete a block with the M before them, and
// with it the reconstruction of those.
template <class Real, class Spec>
class Stream {
  public:
    explicit Stream(std::size_t m) : m_(m), mdct_(m), in_(2 * m), out_(2 * m) {}

    void take(const std::vector<float>& next) {
        const auto half = static_cast<std::ptrdiff_t>(m_);
        std::copy(in_.begin() + half, in_.end(), in_.begin());
        std::copy(next.begin(), next.end(), in_.begin() + half);
        std::copy(out_.begin() + half, out_.end(), out_.begin());
        std::fill(out_.begin() + half, out_.end(), Real(0));
        coefficients_ = mdct_.analyse(in_.data());
        mdct_.synthesise(coefficients_, out_.data());
    }

    const std::vector<Real>& coefficients() const { return coefficients_; }
    // Of the M samples before those taken last.
    double original(std::size_t i) const { return static_cast<double>(in_[i]); }
    double error(std::size_t i) const {
        return static_cast<double>(out_[i]) - static_cast<double>(in_[i]);
    }

  private:
    std::size_t m_;
    Mdct<Real, Spec> mdct_;
    std::vector<Real> in_, out_, coefficients_;
};

struct Channel {
    explicit Channel(std::size_t m) : single(m), twice(m) {}
    Stream<Orv32f, OrvDCT4Spec_32f> single;
    Stream<Orv64f, OrvDCT4Spec_64f> twice;
};

// Takes the next M samples of every channel; of the M before them `known` belong to the recording.
class Gatherer {
  public:
    Gatherer(RoundTrip& result, std::size_t channels)
        : result_(result), magnitudes_{std::vector<float>(std::min(result.size, RoundTrip::rows))} {
        for (std::size_t c = 0; c < channels; ++c)
            channels_.push_back(std::make_unique<Channel>(result.size));
    }

    void take(const std::vector<std::vector<float>>& next, std::size_t known) {
        std::fill(magnitudes_.rows.begin(), magnitudes_.rows.end(), 0.0F);
        stretch_.assign(known, {});
        for (std::size_t c = 0; c < channels_.size(); ++c) {
            Channel& channel = *channels_[c];
            channel.single.take(next[c]);
            channel.twice.take(next[c]);
            addCoefficients(channel.single.coefficients());
            for (std::size_t i = 0; i < known; ++i) stretch_[i].merge(figures(channel, i));
        }
        result_.blocks += static_cast<std::int64_t>(channels_.size());
        result_.magnitudes.add(magnitudes_);
        for (const Samples& s : stretch_) result_.samples.add(s);
    }

  private:
    void addCoefficients(const std::vector<float>& coefficients) {
        const std::size_t rows = magnitudes_.rows.size();
        for (std::size_t k = 0; k < coefficients.size(); ++k) {
            float& row = magnitudes_.rows[k * rows / coefficients.size()];
            row = std::max(row, std::abs(coefficients[k]));
        }
    }

    Samples figures(const Channel& channel, std::size_t i) {
        const double x = channel.twice.original(i);
        const double e = channel.single.error(i), f = channel.twice.error(i);
        result_.single.add(x, e);
        result_.twice.add(x, f);
        result_.peak = std::max(result_.peak, std::abs(x));
        const auto sample = static_cast<float>(x);
        return {sample, sample, std::abs(e), std::abs(f)};
    }

    RoundTrip& result_;
    std::vector<std::unique_ptr<Channel>> channels_;
    Magnitudes magnitudes_;
    std::vector<Samples> stretch_;
};

}  // namespace

RoundTrip roundTrip(Recording& recording, std::size_t size, const Progress& progress) {
    RoundTrip result;
    result.size = size;
    result.channels = recording.channels();
    Gatherer gatherer(result, recording.channels());
    Recording::Block read;
    std::vector<std::vector<float>> next(recording.channels(), std::vector<float>(size));
    std::size_t known = 0;
    // Few large reads, whatever the size of a block.
    const std::size_t framesPerRead = std::max<std::size_t>(size, 1 << 14);
    while (recording.read(framesPerRead, read)) {
        const std::size_t frames = read.front().size();
        for (std::size_t first = 0; first < frames; first += size) {
            const std::size_t count = std::min(size, frames - first);
            for (std::size_t c = 0; c < next.size(); ++c) {
                const auto from = read[c].begin() + static_cast<std::ptrdiff_t>(first);
                std::fill(std::copy_n(from, count, next[c].begin()), next[c].end(), 0.0F);
            }
            gatherer.take(next, known);
            known = count;
        }
        progress(recording.part());
    }
    // One more block, so that the last samples lie in two as well.
    for (std::vector<float>& channel : next) std::fill(channel.begin(), channel.end(), 0.0F);
    gatherer.take(next, known);
    progress(1);
    return result;
}
