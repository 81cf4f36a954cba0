// SPDX-License-Identifier: MIT
// The sign of the exponent: exp(-2 pi i n k / N) forward, exp(+2 pi i n k / N) inverse.
#pragma once

#include <cstdint>

namespace orvgen::flows {

enum class Direction : std::uint8_t { Forward, Inverse };

}  // namespace orvgen::flows
