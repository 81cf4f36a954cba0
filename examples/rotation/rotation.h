// SPDX-License-Identifier: MIT
// The frozen rotation (src/rotation) of vectors that stand one behind the other.

#ifndef ROTATION_ROTATION_H
#define ROTATION_ROTATION_H

#include <cstddef>
#include <vector>

#include "rotation/rotation.h"

class Rotation {
  public:
    // BadInput for a size whose power of two is not 2 to 8192, or whose odd factor is above 63.
    explicit Rotation(int size);

    // Turns `count` vectors that stand one behind the other. The bits of the result are the same on
    // every processor.
    void apply(float* vectors, std::size_t count) const;

    int size() const { return static_cast<int>(signs_.size()); }
    int order() const { return shape_.order; }
    int odd() const { return shape_.odd; }

  private:
    orvgen::rotation::Shape shape_;
    std::vector<float> signs_;
};

#endif
