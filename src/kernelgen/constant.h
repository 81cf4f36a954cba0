// SPDX-License-Identifier: MIT
// Constants of the transforms: an exact meaning, a text that states it, and the value as stored.
//
// A constant is computed from integers with about 75 decimal digits and rounded once, to the type
// in which a kernel stores it. cosTurn(1, 8) is cos(2 pi 1/8): a "turn" is a full circle.
#pragma once

#include <memory>
#include <optional>
#include <string>

namespace orvgen::kernelgen {

struct ExactReal;  // real.h

class Constant {
  public:
    Constant();  // 0
    Constant(int value);
    Constant(const ExactReal& value, std::string formula);

    const ExactReal& exact() const { return *value_; }
    const std::string& formula() const { return formula_; }

    // The value as a kernel holds it. A pinned constant is stored as given, not as rounded.
    float asFloat() const;
    double asDouble() const;

    // The same constant, stored in binary64 as exactly this value; the reason stands at the caller.
    Constant pinnedTo(double stored) const;

    bool isZero() const;
    bool isNegative() const;
    bool equals(int value) const;
    Constant magnitude() const;

    friend Constant operator-(const Constant& a);
    friend Constant operator*(const Constant& a, const Constant& b);
    friend Constant operator+(const Constant& a, const Constant& b);
    friend Constant operator-(const Constant& a, const Constant& b);

  private:
    std::shared_ptr<const ExactReal> value_;  // shared by copies
    std::string formula_;
    std::optional<double> stored_;
};

// cos and sin of 2 pi num/den, reduced to the first octant in integers, so that values which are
// equal by symmetry are equal in every bit and 0, 1 and 1/2 are exact.
Constant cosTurn(long num, long den);
Constant sinTurn(long num, long den);

Constant ratio(long num, long den);
Constant squareRoot(long n);

}  // namespace orvgen::kernelgen
