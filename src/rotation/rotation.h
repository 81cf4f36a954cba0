// SPDX-License-Identifier: MIT
// Turning vectors without a matrix: signs, then a Walsh-Hadamard and a Hartley transform.
//
// A vector of 2^k m elements, m odd, is seen as m rows of 2^k. Each step is orthogonal: a fixed
// pseudo-random sign for each element, the Walsh-Hadamard transform of each row, the Hartley
// transform of each column. So lengths and angles stay, while what stood out in single elements is
// spread over all of them. The bits of the result are frozen: they are the same on every processor
// and in every release, so that turned vectors may be stored.
#pragma once

#include <orvgen_batch.h>

#include <cstddef>
#include <optional>
#include <span>

namespace orvgen::rotation {

struct Shape {
    int order = 0;  // k, 1 to 13
    int odd = 0;    // m, up to 63

    std::ptrdiff_t row() const { return std::ptrdiff_t{1} << order; }
    std::ptrdiff_t size() const { return odd * row(); }
};

// Nothing for a size that is no such product.
std::optional<Shape> shapeOf(std::ptrdiff_t size);

// Which sizes there are, as the end of a sentence.
inline constexpr const char* kSizes = "a power of two, 2 to 8192, times an odd number up to 63";

// 1 or -1 for each element of a vector.
void writeSigns(std::span<float> signs);
void writeSigns(std::span<double> signs);

// Where `count` vectors stand: element i of vector v at start[i * stride + v * distance].
template <class T>
struct Vectors {
    T* start = nullptr;
    std::ptrdiff_t stride = 1, distance = 0;
    std::size_t count = 0;
};

// Turns the vectors in place, or back again. `signs` are those of the shape's size.
OrvStatus turn(const Vectors<float>& vectors, Shape shape, std::span<const float> signs);
OrvStatus turn(const Vectors<double>& vectors, Shape shape, std::span<const double> signs);
OrvStatus turnBack(const Vectors<float>& vectors, Shape shape, std::span<const float> signs);
OrvStatus turnBack(const Vectors<double>& vectors, Shape shape, std::span<const double> signs);

}  // namespace orvgen::rotation
