// SPDX-License-Identifier: MIT
// Roots of unity as constants, and the rotation that is the same in all lanes.
#pragma once

#include "lanes.h"

namespace orvgen::dft {

struct ComplexConstant {
    Constant re, im;
};
using ComplexConstants = std::vector<ComplexConstant>;

// exp(-+ 2 pi i num/den)
ComplexConstant unitRoot(Direction direction, std::size_t num, std::size_t den);

using FourConstants = std::array<Constant, 4>;
inline FourConstants everywhere(const Constant& c) { return {c, c, c, c}; }

// z exp(-+ 2 pi i num/den), the same in all lanes: a quarter turn is an exchange and a sign, any
// other one a full complex product.
Vector rotated(Direction direction, const Vector& z, std::size_t num, std::size_t den);

}  // namespace orvgen::dft
