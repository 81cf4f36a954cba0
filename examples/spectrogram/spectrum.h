// SPDX-License-Identifier: MIT
// Levels of a recording over time and frequency: windowed 64-point transforms, averaged over
// columns.

#ifndef SPECTROGRAM_SPECTRUM_H
#define SPECTROGRAM_SPECTRUM_H

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "../common/progress.h"
#include "../common/recording.h"

struct Spectrogram {
    static constexpr int points = 64;            // samples of one transform
    static constexpr int bins = points / 2 + 1;  // from 0 to half the rate
    static constexpr std::size_t columns = 1340;
    static constexpr std::size_t channelsShown = 8;  // of a recording with more they are joined

    struct Column {
        std::array<double, bins> db{};  // 0 dB being a sine of full scale
        float peak = 0;                 // the largest magnitude of the recording's own samples
    };
    // One for each channel. Joined: the mean of the channels' powers and the largest of their
    // peaks, so that nothing cancels.
    std::vector<std::vector<Column>> channels;
    bool joined = false;

    double rate = 0;  // of the transformed samples
    bool resampled = false;
    double top = 0;  // the highest frequency that is shown
    double seconds = 0;
    int hop = 0;  // samples from one window to the next
    std::int64_t transforms = 0;
    // Nanoseconds for one, at best: in batches, as all were made, and, tried on the first of them,
    // by a loop of single calls, which gives the same bits.
    double batchNanoseconds = 0, singleNanoseconds = 0;

    double binWidth() const { return rate / points; }
    // Of the bins shown.
    int binsShown() const;
    struct Loudest {
        double db, frequency, seconds;
    };
    Loudest loudest() const;
};

// Reads the recording to its end. A band narrower than the recording's is resampled, so that the
// bins lie closer. Throws BadInput where there are less than 64 samples.
Spectrogram analyse(Recording& recording, std::optional<double> band, const Progress& progress);

#endif
