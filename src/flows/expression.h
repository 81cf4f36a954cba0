// SPDX-License-Identifier: MIT
// A value that may still be a sum of products.
//
// A twiddle or a pointwise product gives each component as c1 a + c2 b. If the one thing that is
// done with it is a product by another constant (the sine term of a 3-point block), the constants
// are multiplied out and the sum itself is never formed: one expression, one rounding. In the same
// way a doubled term whose double has no other use hands its 2 on to the constant.
#pragma once

#include "kernelgen/constant.h"
#include "kernelgen/value.h"

namespace orvgen::flows {

using kernelgen::Complex;
using kernelgen::conj;
using kernelgen::Constant;

template <class V>
class Expression {
  public:
    Expression() = default;
    Expression(const V& value) : form_(Form::Value), a_(value) {}

    static Expression ofProducts(const Constant& c1, const V& a, const Constant& c2, const V& b) {
        Expression e;
        e.form_ = Form::Products;
        e.a_ = a;
        e.b_ = b;
        e.c1_ = c1;
        e.c2_ = c2;
        return e;
    }
    static Expression ofDouble(const V& a) {
        Expression e(a);
        e.form_ = Form::Double;
        return e;
    }

    bool isEmpty() const { return form_ == Form::Empty; }

    // The value, not rounded yet where it is the result of a double expression.
    V formed() const {
        switch (form_) {
            case Form::Products:
                return c1_ * a_ + c2_ * b_;
            case Form::Double:
                return twice(a_);
            default:
                return a_;
        }
    }

    friend V narrow(const Expression& e) { return narrow(e.formed()); }

    // c e, with the constants multiplied out where e is not formed.
    friend V product(const Constant& c, const Expression& e) {
        switch (e.form_) {
            case Form::Products:
                return (c * e.c1_) * e.a_ + (c * e.c2_) * e.b_;
            case Form::Double:
                return (c * Constant(2)) * e.a_;
            default:
                return c * narrow(e.a_);
        }
    }

    friend Expression operator-(Expression e) {
        switch (e.form_) {
            case Form::Empty:
                break;
            case Form::Products:
                e.c1_ = -e.c1_;
                e.c2_ = -e.c2_;
                break;
            default:
                e.a_ = -e.a_;
        }
        return e;
    }

  private:
    enum class Form { Empty, Value, Double, Products };

    Form form_ = Form::Empty;
    V a_, b_;
    Constant c1_, c2_;
};

}  // namespace orvgen::flows
