// SPDX-License-Identifier: MIT
// Cosine and sine of pi x. Called while a plan is built, never in a run.
#pragma once

namespace orvgen::dct4 {

extern "C" {

// The angle pi x is formed in binary64 and rounded to binary32 before cosf or sinf sees it.
float orvgCosPi_32f(float x);
float orvgSinPi_32f(float x);

// No reduction of the argument and no exact cases: whatever the library gives for x times pi.
double orvgCosPi_64f(double x);
double orvgSinPi_64f(double x);
}

// The same by the type of x.
inline float cosPi(float x) { return orvgCosPi_32f(x); }
inline float sinPi(float x) { return orvgSinPi_32f(x); }
inline double cosPi(double x) { return orvgCosPi_64f(x); }
inline double sinPi(double x) { return orvgSinPi_64f(x); }

}  // namespace orvgen::dct4
