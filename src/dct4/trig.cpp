// SPDX-License-Identifier: MIT
// A file of their own: where two of these could be inlined into one caller, the compiler would make
// one call of sincos out of a cosine and a sine of the same angle.
#include "dct4/trig.h"

#include <cmath>

namespace orvgen::dct4 {

namespace {
constexpr double pi = 3.141592653589793;
}

extern "C" {

float orvgCosPi_32f(float x) { return cosf(static_cast<float>(static_cast<double>(x) * pi)); }

float orvgSinPi_32f(float x) { return sinf(static_cast<float>(static_cast<double>(x) * pi)); }

double orvgCosPi_64f(double x) { return cos(x * pi); }

double orvgSinPi_64f(double x) { return sin(x * pi); }
}

}  // namespace orvgen::dct4
