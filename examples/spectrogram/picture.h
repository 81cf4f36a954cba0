// SPDX-License-Identifier: MIT
// The picture: spectrogram and envelope of each channel, axes, level scale.

#ifndef SPECTROGRAM_PICTURE_H
#define SPECTROGRAM_PICTURE_H

#include <string>

#include "../common/painter.h"
#include "spectrum.h"

// Where the picture of so many channels has what.
struct Layout {
    explicit Layout(std::size_t channels);
    Box envelope(std::size_t channel) const;
    Box levels(std::size_t channel) const;
    Box scale() const;

    std::size_t channels;
    double panelHeight;
    int width = 1600;
    int height;
};

// The levels from the bottom to the top of the colour scale.
struct LevelRange {
    double bottom, top;
};
LevelRange levelRange(const Spectrogram& s);

// Throws std::runtime_error where the file cannot be written.
void writePicture(const Spectrogram& s, const std::string& title, const std::string& subtitle,
                  const std::string& path);

#endif
