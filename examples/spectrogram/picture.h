// The picture: spectrogram, envelope of the samples, axes, level scale.

#ifndef SPECTROGRAM_PICTURE_H
#define SPECTROGRAM_PICTURE_H

#include <string>

#include "spectrum.h"

// How many columns the plot has, one for each of its pixels.
constexpr int plotColumns = 1340;

// Writes a PNG; throws std::runtime_error where the file cannot be written.
void writePicture(const Spectrogram& s, const std::string& title, const std::string& subtitle,
                  const std::string& path);

#endif
