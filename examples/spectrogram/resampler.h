// SPDX-License-Identifier: MIT
// One channel at a lower rate, block by block, by libsamplerate.

#ifndef SPECTROGRAM_RESAMPLER_H
#define SPECTROGRAM_RESAMPLER_H

#include <memory>
#include <vector>

struct SRC_STATE_tag;

class Resampler {
  public:
    // The part of the new band, from 0 up, that the converter's filter leaves as it is.
    static constexpr double passed = 0.9;

    explicit Resampler(double ratio);  // of the new rate to the old one

    // What comes out of the block; with `last` all that is still held back, too.
    void convert(const std::vector<float>& block, bool last, std::vector<float>& out);

  private:
    struct Release {
        void operator()(SRC_STATE_tag* state) const;
    };
    double ratio_;
    std::unique_ptr<SRC_STATE_tag, Release> state_;
};

#endif
