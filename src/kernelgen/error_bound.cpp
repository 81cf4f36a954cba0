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

using Lanes = std::array<LinearValue, 4>;

class Propagation {
  public:
    explicit Propagation(const Graph& graph) : graph_(graph), values_(graph.nodes().size()) {
        const Arithmetic a = graph.arithmetic();
        if (a == Arithmetic::Single || a == Arithmetic::SingleLanes)
            doubleUnit_ = std::ldexp(1.0, 24 - 53);
    }

    ErrorBound run() {
        for (std::size_t i = 0; i < values_.size(); ++i) {
            const Node& n = graph_.nodes()[i];
            if (n.op == Op::Output)
                output(n);
            else
                for (std::size_t l = 0; l < lanesOf(n); ++l) values_[i][l] = value(n, l);
        }
        return bound_;
    }

  private:
    static std::size_t lanesOf(const Node& n) {
        return static_cast<std::size_t>(kernelgen::lanesOf(n.type));
    }
    // A rounding in units of the output's u.
    double unit(Type t) const { return t == Type::F64 || t == Type::F64x2 ? doubleUnit_ : 1.0; }
    const Lanes& of(NodeId id) const { return values_[static_cast<std::size_t>(id)]; }
    const LinearValue& of(const Lane& lane) const {
        return of(lane.node)[static_cast<std::size_t>(lane.lane)];
    }

    void output(const Node& n) {
        if (n.type == Type::F32Pair) {
            const Graph::PairOutput& pair = graph_.pairOutput(n);
            note(of(pair.re));
            note(of(pair.im));
            return;
        }
        for (std::size_t l = 0; l < lanesOf(n); ++l) note(of(n.a)[l]);
    }
    void note(const LinearValue& v) {
        bound_.absolute = std::max(bound_.absolute, v.error);
        bound_.magnitude = std::max(bound_.magnitude, v.magnitude());
    }

    LinearValue value(const Node& n, std::size_t l) const {
        switch (n.op) {
            case Op::Input: {
                LinearValue v;
                v.weights.resize(static_cast<std::size_t>(n.index) * lanesOf(n) + l + 1);
                v.weights.back() = 1;
                return v;
            }
            case Op::Zero:
            case Op::Scale:
            case Op::Output:
                return {};
            case Op::Pack:
                return of(graph_.lanes(n)[l]);
            case Op::Add:
            case Op::Sub:
                return sum(n, of(n.a)[l], of(n.b)[l]);
            case Op::Mul:
                return product(n, of(n.a)[l], graph_.constant(n).lane(l).asDouble());
            case Op::MulScale:
            case Op::Widen:
                return of(n.a)[l];
            case Op::Narrow: {
                LinearValue v = of(n.a)[l];
                v.error += v.magnitude();
                return v;
            }
            case Op::Swap:
                return of(n.a)[1 - l];
            case Op::FlipLow:
                return l == 0 ? times(of(n.a)[l], -1) : of(n.a)[l];
            case Op::FlipHigh:
                return l == 1 ? times(of(n.a)[l], -1) : of(n.a)[l];
        }
        return {};
    }

    LinearValue sum(const Node& n, const LinearValue& a, const LinearValue& b) const {
        LinearValue v = combine(a, b, n.op == Op::Add ? 1 : -1);
        // Nothing is rounded beside a zero, as in the sign steps 0 - b.
        if (a.magnitude() != 0 && b.magnitude() != 0) v.error += unit(n.type) * v.magnitude();
        return v;
    }

    LinearValue product(const Node& n, const LinearValue& a, double c) const {
        LinearValue v = times(a, c);
        // The stored constant is rounded, then the product; by 0, 1, 2 neither is.
        const bool exact = c == 0 || std::abs(c) == 1 || std::abs(c) == 2 || std::abs(c) == 0.5;
        if (!exact) v.error += 2 * unit(n.type) * v.magnitude();
        return v;
    }

    static LinearValue times(LinearValue v, double c) {
        v.error *= std::abs(c);
        for (double& w : v.weights) w *= c;
        return v;
    }

    const Graph& graph_;
    std::vector<Lanes> values_;
    double doubleUnit_ = 1;  // of a rounding to binary64
    ErrorBound bound_;
};

}  // namespace

ErrorBound errorBound(const Graph& graph) { return Propagation(graph).run(); }

}  // namespace orvgen::kernelgen
