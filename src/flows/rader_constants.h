// SPDX-License-Identifier: MIT
// The constants of Rader's algorithm for real data.
#pragma once

#include <vector>

#include "kernelgen/constant.h"

namespace orvgen::flows {

// K[k] = (1/L) sum over r < L of c(r) exp(-2 pi i k r/L), L = p-1, with c(r) = cos(2 pi e g^r/p)
// for even k and -sin(2 pi e g^r/p) for odd k, g the smallest primitive root of p. The inner k,
// which stand for k and L - k, are doubled. K[0] = -1/L, and K[L/2] is real.
struct RaderConstants {
    std::vector<kernelgen::Constant> re, im;  // k = 0..L/2

    RaderConstants(long p, long e);
};

}  // namespace orvgen::flows
