// SPDX-License-Identifier: MIT
#include "rotation.h"

#include <string>

#include "bad_input.h"

Rotation::Rotation(int size) {
    const auto shape = orvgen::rotation::shapeOf(size);
    if (!shape)
        throw BadInput("no rotation of " + std::to_string(size) + " elements: they are " +
                       orvgen::rotation::kSizes);
    shape_ = *shape;
    signs_.resize(static_cast<std::size_t>(size));
    orvgen::rotation::writeSigns(signs_);
}

void Rotation::apply(float* vectors, std::size_t count) const {
    const OrvStatus status = orvgen::rotation::turn(
        {.start = vectors, .stride = 1, .distance = shape_.size(), .count = count}, shape_, signs_);
    if (status != orvOk) throw std::runtime_error(orvgBatchStatusText(status));
}
