// SPDX-License-Identifier: MIT
// Draws the link: the constellation before and after the equaliser, the channel, the bit errors.

#ifndef OFDM_PICTURE_H
#define OFDM_PICTURE_H

#include <string>

#include "../common/painter.h"
#include "link.h"

namespace layout {
constexpr Box before = {110, 130, 430, 430};
constexpr Box after = {640, 130, 430, 430};
constexpr Box channel = {1160, 130, 400, 430};
constexpr Box errors = {110, 670, 1450, 210};
constexpr double reach = 2;  // of a constellation's axes, in root mean square points
}  // namespace layout

constexpr std::size_t pointsShown = 12000;  // of a constellation: more would only fill it up

struct Picture {
    std::string title, subtitle;
    const Settings& settings;
    const Outcome& outcome;
};

// Throws std::runtime_error where the file cannot be written.
void writePicture(const Picture& picture, const std::string& path);

#endif
