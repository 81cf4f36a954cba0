// Constants of the transforms: an exact meaning, a text that states it, and the value as stored.
//
// A constant is computed from integers with about 75 decimal digits and rounded once, to the type
// in which a kernel stores it. cosTurn(1, 8) is cos(2 pi 1/8): a "turn" is a full circle.
#pragma once

#include <boost/multiprecision/cpp_bin_float.hpp>
#include <optional>
#include <string>

namespace orvgen::kernelgen {

using Real = boost::multiprecision::number<
    boost::multiprecision::cpp_bin_float<256, boost::multiprecision::digit_base_2>,
    boost::multiprecision::et_off>;

class Constant {
  public:
    Constant() = default;
    Constant(Real value, std::string formula) : value_(value), formula_(std::move(formula)) {}
    Constant(int value) : value_(value), formula_(std::to_string(value)) {}

    const Real& exact() const { return value_; }
    const std::string& formula() const { return formula_; }

    // The value as a kernel holds it. A pinned constant is stored as given, not as rounded.
    float asFloat() const;
    double asDouble() const;

    // The same constant, stored in binary64 as exactly this value; the reason stands at the caller.
    Constant pinnedTo(double stored) const;

    bool isZero() const { return value_ == 0; }
    bool isNegative() const { return value_ < 0; }
    Constant magnitude() const;

    friend Constant operator-(const Constant& a);
    friend Constant operator*(const Constant& a, const Constant& b);
    friend Constant operator+(const Constant& a, const Constant& b);
    friend Constant operator-(const Constant& a, const Constant& b);

  private:
    Real value_ = 0;
    std::string formula_ = "0";
    std::optional<double> stored_;
};

// cos and sin of 2 pi num/den, reduced to the first octant in integers, so that values which are
// equal by symmetry are equal in every bit and 0, 1 and 1/2 are exact.
Constant cosTurn(long num, long den);
Constant sinTurn(long num, long den);

Constant ratio(long num, long den);
Constant squareRoot(long n);

}  // namespace orvgen::kernelgen
