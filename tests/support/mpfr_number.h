// SPDX-License-Identifier: MIT
// A number of MPFR's that frees itself.
#pragma once

#include <mpfr.h>

namespace orvgen::test {

class Mpfr {
  public:
    explicit Mpfr(mpfr_prec_t bits) { mpfr_init2(x, bits); }
    ~Mpfr() { mpfr_clear(x); }
    Mpfr(const Mpfr&) = delete;
    Mpfr& operator=(const Mpfr&) = delete;
    double value() const { return mpfr_get_d(x, MPFR_RNDN); }
    mpfr_t x;
};

}  // namespace orvgen::test
