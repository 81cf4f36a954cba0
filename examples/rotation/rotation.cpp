// SPDX-License-Identifier: MIT
#include "rotation.h"

#include <orvgen_batch.h>

#include <bit>
#include <string>

#include "program.h"

namespace {

// The generator splitmix64.
std::uint64_t next(std::uint64_t& state) {
    state += 0x9e3779b97f4a7c15;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    return z ^ (z >> 31);
}

void require(OrvStatus status) {
    if (status != orvOk) throw std::runtime_error(orvgBatchStatusText(status));
}

}  // namespace

Rotation::Rotation(int size) {
    if (size > 0) {
        order_ = std::countr_zero(static_cast<unsigned>(size));
        odd_ = size >> order_;
    }
    if (order_ < 1 || order_ > 13 || odd_ > 63)
        throw BadInput(
            "no rotation of " + std::to_string(size) +
            " elements: they are a power of two, 2 to 8192, times an odd number up to 63");
    std::uint64_t state = 0;
    for (int i = 0; i < size; ++i) signs_.push_back((next(state) >> 63) == 0 ? 1.0F : -1.0F);
}

void Rotation::apply(float* vectors, std::size_t count) const {
    const std::size_t n = signs_.size();
    for (std::size_t v = 0; v < count; ++v)
        for (std::size_t i = 0; i < n; ++i) vectors[v * n + i] *= signs_[i];

    // The rows of all vectors follow each other.
    const std::ptrdiff_t row = std::ptrdiff_t{1} << order_;
    const std::size_t rows = count * static_cast<std::size_t>(odd_);
    require(orvgBatchWHT_32f(vectors, 1, row, vectors, 1, row, order_, rows, orvScaleBySqrtN));
    if (odd_ == 1) return;
    for (std::size_t v = 0; v < count; ++v) {
        float* x = vectors + v * n;
        require(orvgBatchHartley_32f(x, row, 1, x, row, 1, odd_, static_cast<std::size_t>(row),
                                     orvScaleBySqrtN));
    }
}
