// Draws the link: the constellation before and after the equaliser, the channel, the bit errors.

#ifndef OFDM_PICTURE_H
#define OFDM_PICTURE_H

#include <string>

#include "link.h"

struct Picture {
    std::string title, subtitle;
    const Settings& settings;
    const Outcome& outcome;
};

void writePicture(const Picture& picture, const std::string& path);

#endif
