// SPDX-License-Identifier: MIT
#include "rotation/rotation.h"

#include <bit>
#include <cstdint>

namespace orvgen::rotation {
namespace {

// The generator splitmix64.
std::uint64_t next(std::uint64_t& state) {
    state += 0x9e3779b97f4a7c15;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    return z ^ (z >> 31);
}

template <class T>
void signsOf(std::span<T> signs) {
    std::uint64_t state = 0;
    for (T& sign : signs) sign = (next(state) >> 63) == 0 ? T{1} : T{-1};
}

template <class T>
void multiply(const Vectors<T>& vectors, std::span<const T> signs) {
    for (std::size_t v = 0; v < vectors.count; ++v) {
        T* x = vectors.start + static_cast<std::ptrdiff_t>(v) * vectors.distance;
        for (std::size_t i = 0; i < signs.size(); ++i)
            x[static_cast<std::ptrdiff_t>(i) * vectors.stride] *= signs[i];
    }
}

OrvStatus hadamard(float* x, std::ptrdiff_t stride, std::ptrdiff_t distance, int order,
                   std::size_t count) {
    return orvgBatchWHT_32f(x, stride, distance, x, stride, distance, order, count,
                            orvScaleBySqrtN);
}
OrvStatus hadamard(double* x, std::ptrdiff_t stride, std::ptrdiff_t distance, int order,
                   std::size_t count) {
    return orvgBatchWHT_64f(x, stride, distance, x, stride, distance, order, count,
                            orvScaleBySqrtN);
}
OrvStatus hartley(float* x, std::ptrdiff_t stride, std::ptrdiff_t distance, int len,
                  std::size_t count) {
    return orvgBatchHartley_32f(x, stride, distance, x, stride, distance, len, count,
                                orvScaleBySqrtN);
}
OrvStatus hartley(double* x, std::ptrdiff_t stride, std::ptrdiff_t distance, int len,
                  std::size_t count) {
    return orvgBatchHartley_64f(x, stride, distance, x, stride, distance, len, count,
                                orvScaleBySqrtN);
}

// One call where the rows of all vectors follow each other evenly.
template <class T>
OrvStatus transformRows(const Vectors<T>& vectors, Shape shape) {
    const std::ptrdiff_t step = shape.row() * vectors.stride;
    const auto rows = static_cast<std::size_t>(shape.odd);
    if (vectors.count == 1 || vectors.distance == shape.odd * step)
        return hadamard(vectors.start, vectors.stride, step, shape.order, vectors.count * rows);
    if (shape.odd == 1)
        return hadamard(vectors.start, vectors.stride, vectors.distance, shape.order,
                        vectors.count);
    OrvStatus status = orvOk;
    for (std::size_t v = 0; v < vectors.count && status == orvOk; ++v)
        status = hadamard(vectors.start + static_cast<std::ptrdiff_t>(v) * vectors.distance,
                          vectors.stride, step, shape.order, rows);
    return status;
}

template <class T>
OrvStatus transformColumns(const Vectors<T>& vectors, Shape shape) {
    OrvStatus status = orvOk;
    for (std::size_t v = 0; v < vectors.count && shape.odd > 1 && status == orvOk; ++v)
        status = hartley(vectors.start + static_cast<std::ptrdiff_t>(v) * vectors.distance,
                         shape.row() * vectors.stride, vectors.stride, shape.odd,
                         static_cast<std::size_t>(shape.row()));
    return status;
}

template <class T>
OrvStatus forward(const Vectors<T>& vectors, Shape shape, std::span<const T> signs) {
    multiply(vectors, signs);
    const OrvStatus status = transformRows(vectors, shape);
    return status == orvOk ? transformColumns(vectors, shape) : status;
}

template <class T>
OrvStatus backward(const Vectors<T>& vectors, Shape shape, std::span<const T> signs) {
    OrvStatus status = transformColumns(vectors, shape);
    if (status == orvOk) status = transformRows(vectors, shape);
    if (status == orvOk) multiply(vectors, signs);
    return status;
}

}  // namespace

std::optional<Shape> shapeOf(std::ptrdiff_t size) {
    if (size <= 0 || size > std::ptrdiff_t{63} << 13) return std::nullopt;
    const int order = std::countr_zero(static_cast<std::uint64_t>(size));
    const auto odd = static_cast<int>(size >> order);
    if (order < 1 || order > 13 || odd > 63) return std::nullopt;
    return Shape{.order = order, .odd = odd};
}

void writeSigns(std::span<float> signs) { signsOf(signs); }
void writeSigns(std::span<double> signs) { signsOf(signs); }

OrvStatus turn(const Vectors<float>& vectors, Shape shape, std::span<const float> signs) {
    return forward(vectors, shape, signs);
}
OrvStatus turn(const Vectors<double>& vectors, Shape shape, std::span<const double> signs) {
    return forward(vectors, shape, signs);
}
OrvStatus turnBack(const Vectors<float>& vectors, Shape shape, std::span<const float> signs) {
    return backward(vectors, shape, signs);
}
OrvStatus turnBack(const Vectors<double>& vectors, Shape shape, std::span<const double> signs) {
    return backward(vectors, shape, signs);
}

}  // namespace orvgen::rotation
