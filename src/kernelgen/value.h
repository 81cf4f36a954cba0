// SPDX-License-Identifier: MIT
// Values as the flows see them: numbers with +, - and products by constants.
//
// A flow is a template over its value type V. With V = Value it builds a graph; with V = Number
// (number.h) it computes. Both follow the same rules:
//  - a minus sign in front of a value costs nothing: it goes into the next sum, a + (-b) = a - b;
//    a difference that exists with its operands exchanged is used with a minus;
//  - in Single arithmetic a sum of two binary32 values is a binary32 sum; a product by a constant
//    widens its operand and opens a double expression, which runs on through every sum it enters
//    and is rounded by narrow(), once;
//  - in all other arithmetics narrow() does nothing.
#pragma once

#include <array>

#include "graph.h"

namespace orvgen::kernelgen {

class Value {
  public:
    Value() = default;
    Value(Graph& graph, NodeId id, bool negative = false)
        : graph_(&graph), id_(id), negative_(negative) {}

    Graph& graph() const { return *graph_; }
    NodeId id() const { return id_; }
    bool negative() const { return negative_; }
    Type type() const { return graph_->node(id_).type; }
    bool isDouble() const { return type() == Type::F64 || type() == Type::F64x2; }
    bool valid() const { return graph_ != nullptr; }

    friend Value operator-(const Value& a) { return {*a.graph_, a.id_, !a.negative_}; }
    friend Value operator+(const Value& a, const Value& b);
    friend Value operator-(const Value& a, const Value& b) { return a + (-b); }
    friend Value operator*(const Constant& c, const Value& a);
    // The double, in the arithmetic of the value itself: exact but for an overflow.
    friend Value twice(const Value& a);
    // One constant per lane (Arithmetic::SingleLanes).
    friend Value operator*(const std::array<Constant, 4>& c, const Value& a);

    // The end of a double expression: rounds to binary32 where the arithmetic is Single.
    friend Value narrow(const Value& a);
    // The product by the caller's scale, in the form in which the value stands.
    friend Value scaled(const Value& a);
    // A minus sign that is left is taken by a subtraction from zero: 0.0 - v.
    friend Value signStep(const Value& a);

  private:
    Graph* graph_ = nullptr;
    NodeId id_ = kNone;
    bool negative_ = false;
};

// A complex number over values. Multiplying by i is an exchange and a sign.
template <class V>
struct Complex {
    V re, im;

    friend Complex operator+(const Complex& a, const Complex& b) {
        return {a.re + b.re, a.im + b.im};
    }
    friend Complex operator-(const Complex& a, const Complex& b) {
        return {a.re - b.re, a.im - b.im};
    }
    friend Complex operator-(const Complex& a) { return {-a.re, -a.im}; }
};

template <class V>
Complex<V> conj(const Complex<V>& z) {
    return {z.re, -z.im};
}

template <class V>
Complex<V> timesI(const Complex<V>& z) {
    return {-z.im, z.re};
}

template <class V>
Complex<V> timesMinusI(const Complex<V>& z) {
    return {z.im, -z.re};
}

template <class V>
Complex<V> narrow(const Complex<V>& z) {
    return {narrow(z.re), narrow(z.im)};
}

}  // namespace orvgen::kernelgen
