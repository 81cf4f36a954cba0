// SPDX-License-Identifier: MIT
#include "value.h"

#include <stdexcept>

namespace orvgen::kernelgen {

namespace {

// A binary32 operand of a double expression is widened.
NodeId inType(Graph& g, NodeId id, Type type) {
    return g.node(id).type == Type::F32 && type == Type::F64 ? g.widen(id) : id;
}

}  // namespace

Value operator+(const Value& a, const Value& b) {
    Graph& g = *a.graph_;
    const bool isDouble = a.type() == Type::F64 || b.type() == Type::F64;
    const Type type = isDouble ? Type::F64 : a.type();
    const NodeId x = inType(g, a.id_, type);
    const NodeId y = inType(g, b.id_, type);
    if (a.negative_ == b.negative_) return {g, g.add(x, y), a.negative_};
    const NodeId plus = a.negative_ ? y : x;
    const NodeId minus = a.negative_ ? x : y;
    if (g.findSub(plus, minus) == kNone && g.findSub(minus, plus) != kNone)
        return {g, g.findSub(minus, plus), true};
    return {g, g.sub(plus, minus)};
}

Value operator*(const Constant& c, const Value& a) {
    Graph& g = *a.graph_;
    if (c.isZero()) throw std::logic_error("a product by zero is no operation of a flow");
    const Type type = g.arithmetic() == Arithmetic::Single ? Type::F64 : a.type();
    const NodeId product = g.mul(inType(g, a.id_, type), {c.magnitude()});
    return {g, product, a.negative_ != c.isNegative()};
}

Value twice(const Value& a) {
    Graph& g = *a.graph_;
    return {g, g.mul(a.id_, {Constant(2)}), a.negative_};
}

Value operator*(const std::array<Constant, 4>& c, const Value& a) {
    Graph& g = *a.graph_;
    return {g, g.mul(a.id_, {c.begin(), c.end()}), a.negative_};
}

Value narrow(const Value& a) {
    Graph& g = *a.graph_;
    if (g.arithmetic() != Arithmetic::Single || a.type() != Type::F64) return a;
    return {g, g.narrow(a.id_), a.negative_};
}

Value scaled(const Value& a) { return {*a.graph_, a.graph_->mulScale(a.id_), a.negative_}; }

Value signStep(const Value& a) {
    if (!a.negative_) return a;
    Graph& g = *a.graph_;
    return {g, g.sub(g.zero(a.type()), a.id_)};
}

}  // namespace orvgen::kernelgen
