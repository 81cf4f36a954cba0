// SPDX-License-Identifier: MIT
// Plain numbers with the rules of Value: the same flow run on them computes, without a graph.
//
// It is the oracle for the graph builder. Number<Arithmetic::Single> keeps a binary32 value or an
// open double expression; Number<Arithmetic::Double> is a double.
#pragma once

#include "constant.h"
#include "graph.h"

namespace orvgen::kernelgen {

template <Arithmetic arithmetic>
class Number {
    static_assert(arithmetic == Arithmetic::Single || arithmetic == Arithmetic::Double);

  public:
    Number() = default;
    explicit Number(double value) : value_(value), isDouble_(arithmetic == Arithmetic::Double) {}

    bool isDouble() const { return isDouble_; }
    bool negative() const { return negative_; }
    // The value with its sign; of an open expression the unrounded one.
    double value() const { return negative_ ? -value_ : value_; }

    friend Number operator-(Number a) {
        a.negative_ = !a.negative_;
        return a;
    }
    friend Number operator+(const Number& a, const Number& b) {
        const bool isDouble = a.isDouble_ || b.isDouble_;
        if (a.negative_ == b.negative_)
            return make(sum(a.value_, b.value_, isDouble), isDouble, a.negative_);
        const double plus = a.negative_ ? b.value_ : a.value_;
        const double minus = a.negative_ ? a.value_ : b.value_;
        return make(sum(plus, -minus, isDouble), isDouble, false);
    }
    friend Number operator-(const Number& a, const Number& b) { return a + (-b); }
    friend Number operator*(const Constant& c, const Number& a) {
        return make(c.magnitude().asDouble() * a.value_, true, a.negative_ != c.isNegative());
    }
    friend Number twice(const Number& a) {
        const double doubled =
            a.isDouble_ ? 2 * a.value_ : static_cast<double>(2 * static_cast<float>(a.value_));
        return make(doubled, a.isDouble_, a.negative_);
    }
    friend Number narrow(const Number& a) {
        if (arithmetic == Arithmetic::Double || !a.isDouble_) return a;
        return make(static_cast<double>(static_cast<float>(a.value_)), false, a.negative_);
    }
    // The scale is a binary32 number in Single arithmetic, in double expressions too.
    friend Number scaledBy(double scale, const Number& a) {
        if (a.isDouble_) return make(scale * a.value_, true, a.negative_);
        const float product = static_cast<float>(scale) * static_cast<float>(a.value_);
        return make(static_cast<double>(product), false, a.negative_);
    }
    friend Number signStep(const Number& a) {
        return a.negative_ ? make(0.0 - a.value_, a.isDouble_, false) : a;
    }

  private:
    static Number make(double value, bool isDouble, bool negative) {
        Number n;
        n.value_ = value;
        n.isDouble_ = isDouble;
        n.negative_ = negative;
        return n;
    }
    static double sum(double a, double b, bool isDouble) {
        if (isDouble) return a + b;
        return static_cast<double>(static_cast<float>(a) + static_cast<float>(b));
    }

    double value_ = 0;
    bool isDouble_ = false;
    bool negative_ = false;
};

}  // namespace orvgen::kernelgen
