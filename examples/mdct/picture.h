// The picture: the samples, the level of every coefficient, the error of the reconstruction.

#ifndef MDCT_PICTURE_H
#define MDCT_PICTURE_H

#include <string>
#include <vector>

#include "mdct.h"

struct Picture {
    std::string title, subtitle;
    const std::vector<float>& samples;
    double rate;  // samples a second
    const Reconstruction& single;
    const Reconstruction& twice;  // in binary64
};

// Writes a PNG; throws std::runtime_error where the file cannot be written.
void writePicture(const Picture& picture, const std::string& path);

#endif
