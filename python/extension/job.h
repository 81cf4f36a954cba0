// SPDX-License-Identifier: MIT
// What a generalized ufunc hands to its inner loop, as a job for the batch library.
#pragma once

#include <orvgen_batch.h>

#include <cstddef>
#include <cstdint>

namespace orvgen::python {

// Element j of transform t stands at start + j * stride + t * distance, all in bytes.
struct Places {
    char* start = nullptr;
    std::ptrdiff_t stride = 0, distance = 0;

    Places from(std::ptrdiff_t t) const { return {start + t * distance, stride, distance}; }
    bool suit(std::ptrdiff_t unit) const { return stride % unit == 0 && distance % unit == 0; }
    // Whether neighbours in memory belong to neighbouring transforms.
    bool columns() const {
        return (distance < 0 ? -distance : distance) < (stride < 0 ? -stride : stride);
    }
};

// What is asked for besides the length: a flag of orvgen.h, or for the DCT-IV and the rotation one
// of their own. The Python layer packs both into the scalar operand, which is therefore the same
// array for all calls alike.
struct Task {
    static constexpr int kCodes = 16;

    int len = 0;
    int code = 0;

    static Task unpacked(std::int64_t word) {
        return {static_cast<int>(word / kCodes), static_cast<int>(word % kCodes)};
    }
};

struct Job {
    Places src, dst;
    std::ptrdiff_t have = 0;  // elements of a transform in src: cut, or padded with zeros
    std::ptrdiff_t room = 0;  // elements of a transform in dst
    std::ptrdiff_t count = 0;
    Task task;
};

}  // namespace orvgen::python
