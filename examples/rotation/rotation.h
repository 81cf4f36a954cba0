// SPDX-License-Identifier: MIT
// Turning vectors without a matrix: signs, then a Walsh-Hadamard and a Hartley transform.
//
// A vector of 2^k m elements, m odd, is seen as m rows of 2^k. Each step is orthogonal: a fixed
// pseudo-random sign for each element, the Walsh-Hadamard transform of each row, the Hartley
// transform of each column. So lengths and angles stay, while what stood out in single elements is
// spread over all of them.

#ifndef ROTATION_ROTATION_H
#define ROTATION_ROTATION_H

#include <cstddef>
#include <cstdint>
#include <vector>

class Rotation {
  public:
    // BadInput for a size whose power of two is not 2 to 8192, or whose odd factor is above 63.
    explicit Rotation(int size);

    // Turns `count` vectors that stand one behind the other. The bits of the result are the same on
    // every processor.
    void apply(float* vectors, std::size_t count) const;

    int size() const { return static_cast<int>(signs_.size()); }
    int order() const { return order_; }  // k
    int odd() const { return odd_; }      // m

  private:
    int order_ = 0, odd_ = 0;
    std::vector<float> signs_;
};

#endif
