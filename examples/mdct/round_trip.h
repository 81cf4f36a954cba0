// SPDX-License-Identifier: MIT
// A recording into MDCT coefficients and back, block by block, and what that did to it.

#ifndef MDCT_ROUND_TRIP_H
#define MDCT_ROUND_TRIP_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "../common/columns.h"
#include "../common/progress.h"
#include "../common/recording.h"

// Figures of a stretch of the recording, the largest of all channels.
struct Samples {
    float least = std::numeric_limits<float>::infinity();
    float most = -std::numeric_limits<float>::infinity();
    double singleError = 0, doubleError = 0;  // magnitudes; of the element types

    void merge(const Samples& other) {
        least = std::min(least, other.least);
        most = std::max(most, other.most);
        singleError = std::max(singleError, other.singleError);
        doubleError = std::max(doubleError, other.doubleError);
    }
};

// Magnitudes of a block's coefficients, the largest of so many neighbours each.
struct Magnitudes {
    std::vector<float> rows;

    void merge(const Magnitudes& other) {
        for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = std::max(rows[i], other.rows[i]);
    }
};

// The error of the reconstruction in one element type.
struct Quality {
    double largest = 0;
    double signal = 0, noise = 0;  // energies

    void add(double original, double error) {
        largest = std::max(largest, std::abs(error));
        signal += original * original;
        noise += error * error;
    }
    bool exact() const { return noise == 0; }
    double decibels() const { return 10 * std::log10(signal / noise); }  // where it is not exact
};

struct RoundTrip {
    static constexpr std::size_t columns = 1450, rows = 330;  // what the picture shows at most

    std::size_t size = 0;  // coefficients a block
    std::size_t channels = 0;
    std::int64_t blocks = 0;  // of all channels
    Columns<Samples> samples{columns};
    Columns<Magnitudes> magnitudes{columns};  // of the blocks; the one with number b has its middle
                                              // at sample b * size
    Quality single, twice;                    // binary32, binary64
    double peak = 0;                          // the largest magnitude of the samples
};

// Takes every channel by itself, in memory that does not grow with the recording.
RoundTrip roundTrip(Recording& recording, std::size_t size, const Progress& progress);

#endif
