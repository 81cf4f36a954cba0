// SPDX-License-Identifier: MIT
// Every value is a linear function of the inputs. Its weights give its largest magnitude, sum |w|;
// each rounding adds half a unit of that, and errors are carried on by |sums| and |products|.
#include "error_bound.h"

#include <algorithm>
#include <cmath>

namespace orvgen::kernelgen {

namespace {

struct LinearValue {
    std::vector<double> weights;
    double error = 0;  // in units of u

    double magnitude() const {
        double sum = 0;
        for (const double w : weights) sum += std::abs(w);
        return sum;
    }
};

LinearValue combine(const LinearValue& a, const LinearValue& b, double sign) {
    LinearValue v;
    v.weights.resize(std::max(a.weights.size(), b.weights.size()));
    for (std::size_t i = 0; i < v.weights.size(); ++i)
        v.weights[i] = (i < a.weights.size() ? a.weights[i] : 0.0) +
                       sign * (i < b.weights.size() ? b.weights[i] : 0.0);
    v.error = a.error + b.error;
    return v;
}

}  // namespace

ErrorBound errorBound(const Graph& graph) {
    const bool singleOutput =
        graph.arithmetic() == Arithmetic::Single || graph.arithmetic() == Arithmetic::SingleLanes;
    // A rounding to binary64 in units of the output's u.
    const double doubleUnit = singleOutput ? std::ldexp(1.0, 24 - 53) : 1.0;
    const auto unit = [&](Type t) { return t == Type::F64 || t == Type::F64x2 ? doubleUnit : 1.0; };
    std::vector<std::array<LinearValue, 4>> values(graph.nodes().size());
    ErrorBound bound;
    const auto note = [&](const LinearValue& v) {
        bound.absolute = std::max(bound.absolute, v.error);
        bound.magnitude = std::max(bound.magnitude, v.magnitude());
    };
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Node& n = graph.nodes()[i];
        const auto of = [&](NodeId id) -> const std::array<LinearValue, 4>& {
            return values[static_cast<std::size_t>(id)];
        };
        const std::size_t lanes = n.type == Type::F32x4                              ? 4
                                  : n.type == Type::F64x2 || n.type == Type::F32Pair ? 2
                                                                                     : 1;
        if (n.op == Op::Output && n.type == Type::F32Pair) {
            const auto& out = graph.pairOutput(n);
            for (const Lane& l : {out.re, out.im})
                note(of(l.node)[static_cast<std::size_t>(l.lane)]);
            continue;
        }
        for (std::size_t l = 0; l < lanes; ++l) {
            LinearValue& v = values[i][l];
            switch (n.op) {
                case Op::Input:
                    v.weights.resize(static_cast<std::size_t>(n.index) * lanes + l + 1);
                    v.weights.back() = 1;
                    break;
                case Op::Zero:
                case Op::Scale:
                    break;
                case Op::Pack: {
                    const Lane& lane = graph.lanes(n)[l];
                    v = of(lane.node)[static_cast<std::size_t>(lane.lane)];
                    break;
                }
                case Op::Add:
                case Op::Sub: {
                    const LinearValue &a = of(n.a)[l], &b = of(n.b)[l];
                    v = combine(a, b, n.op == Op::Add ? 1 : -1);
                    // Nothing is rounded beside a zero, as in the sign steps 0 - b.
                    if (a.magnitude() != 0 && b.magnitude() != 0)
                        v.error += unit(n.type) * v.magnitude();
                    break;
                }
                case Op::Mul: {
                    v = of(n.a)[l];
                    const double c = graph.constant(n).lane(l).asDouble();
                    v.error *= std::abs(c);
                    for (double& w : v.weights) w *= c;
                    // The stored constant is rounded, then the product; by 0, 1, 2 neither is.
                    const bool exact =
                        c == 0 || std::abs(c) == 1 || std::abs(c) == 2 || std::abs(c) == 0.5;
                    if (!exact) v.error += 2 * unit(n.type) * v.magnitude();
                    break;
                }
                case Op::MulScale:
                case Op::Widen:
                    v = of(n.a)[l];
                    break;
                case Op::Narrow:
                    v = of(n.a)[l];
                    v.error += v.magnitude();
                    break;
                case Op::Swap:
                    v = of(n.a)[1 - l];
                    break;
                case Op::FlipLow:
                case Op::FlipHigh:
                    v = of(n.a)[l];
                    if ((l == 0) == (n.op == Op::FlipLow))
                        for (double& w : v.weights) w = -w;
                    break;
                case Op::Output:
                    note(of(n.a)[l]);
                    break;
            }
        }
    }
    return bound;
}

}  // namespace orvgen::kernelgen
