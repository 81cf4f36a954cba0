// SPDX-License-Identifier: MIT
// The inputs on which kernels are compared: plain, special, and everything that arithmetic treats
// in a way of its own. Fixed, and the same for all kernels of a length.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orvgen::test {

template <class Real>
struct Input {
    std::string name;
    std::vector<Real> values;
    // Ordinary data: finite, of moderate size; arithmetic on it may only be inexact.
    bool ordinary = false;
};

// Inputs of `count` reals. At most about `impulses` positions carry the impulse, infinity and NaN
// of the inputs that have one special element; 0 stands for all positions.
template <class Real>
std::vector<Input<Real>> makeInputs(std::size_t count, std::size_t impulses = 0);

extern template std::vector<Input<float>> makeInputs<float>(std::size_t, std::size_t);
extern template std::vector<Input<double>> makeInputs<double>(std::size_t, std::size_t);

}  // namespace orvgen::test
