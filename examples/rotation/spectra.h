// SPDX-License-Identifier: MIT
// Vectors out of recordings: log spectra of neighbouring windows, one behind the other.

#ifndef ROTATION_SPECTRA_H
#define ROTATION_SPECTRA_H

#include <string>
#include <vector>

struct Vectors {
    std::size_t size = 0;  // elements of one
    std::vector<float> elements;

    std::size_t count() const { return elements.size() / size; }
    const float* operator[](std::size_t v) const { return &elements[v * size]; }
};

// Vectors of `size` elements, less their mean and of length 1. BadInput where the
// recordings are too short to give any.
Vectors spectra(const std::vector<std::string>& recordings, std::size_t size);

#endif
