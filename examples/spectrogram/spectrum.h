// Levels of a recording over time and frequency: windowed 64-point transforms, averaged over
// columns.

#ifndef SPECTROGRAM_SPECTRUM_H
#define SPECTROGRAM_SPECTRUM_H

#include <cstdint>
#include <functional>
#include <vector>

#include "../common/recording.h"

struct Spectrogram {
    static constexpr int points = 64;            // samples of one transform
    static constexpr int bins = points / 2 + 1;  // from 0 to half the rate

    int hop = 0;                  // samples from one window to the next
    std::int64_t transforms = 0;  // calls of the library
    double rate = 0;
    double seconds = 0;
    double transformSeconds = 0;         // time spent in those calls
    std::vector<std::vector<float>> db;  // [column][bin], 0 dB being a sine of full scale
    std::vector<float> peak;             // [column], largest magnitude of the samples
};

// Progress between 0 and 1.
using Progress = std::function<void(double)>;

// Reads the recording to its end. Throws BadInput where there are less than 64 samples.
Spectrogram analyse(Recording& recording, int columns, const Progress& progress);

#endif
