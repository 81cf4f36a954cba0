// SPDX-License-Identifier: MIT
// The control word of the vector unit for as long as an object lives: rounding mode, masks of
// exceptions, treatment of denormals.
#pragma once

#include <xmmintrin.h>

namespace orvgen::test {

class ControlWord {
  public:
    explicit ControlWord(unsigned word) : before_(_mm_getcsr()) { _mm_setcsr(word); }
    ~ControlWord() { _mm_setcsr(before_); }
    ControlWord(const ControlWord&) = delete;
    ControlWord& operator=(const ControlWord&) = delete;

  private:
    unsigned before_;
};

}  // namespace orvgen::test
