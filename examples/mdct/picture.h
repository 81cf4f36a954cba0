// SPDX-License-Identifier: MIT
// The picture: the samples, the level of every coefficient, the error of the reconstruction.

#ifndef MDCT_PICTURE_H
#define MDCT_PICTURE_H

#include <string>

#include "../common/painter.h"
#include "round_trip.h"

namespace layout {
constexpr Box wave = {110, 116, RoundTrip::columns, 150};
constexpr Box levels = {110, 310, RoundTrip::columns, RoundTrip::rows};
constexpr Box errors = {110, 700, RoundTrip::columns, 220};
}  // namespace layout

struct Picture {
    std::string title, subtitle;
    double rate;  // samples a second
    const RoundTrip& trip;
};

// Throws std::runtime_error where the file cannot be written.
void writePicture(const Picture& picture, const std::string& path);

#endif
