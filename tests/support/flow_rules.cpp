// SPDX-License-Identifier: MIT
#include "support/flow_rules.h"

#include <cmath>
#include <sstream>

#include "kernelgen/real.h"

namespace orvgen::test {

using kernelgen::Graph;
using kernelgen::kNone;
using kernelgen::Node;
using kernelgen::NodeId;
using kernelgen::Op;
using kernelgen::Real;
using kernelgen::Type;

namespace {

// Walks over the values of a flow.
class Precision {
  public:
    explicit Precision(const Graph& graph)
        : graph_(graph),
          isSingle_(graph.elementType() == Type::F32),
          narrowed_(graph.nodes().size()),
          goesOn_(graph.nodes().size()) {}

    PrecisionReport report() {
        const auto& nodes = graph_.nodes();
        for (at_ = 0; at_ < nodes.size(); ++at_) check(nodes[at_]);
        for (std::size_t i = 0; i < nodes.size(); ++i)
            if (narrowed_[i] && goesOn_[i]) ++report_.carried;
        report_.complaints = bad_.str();
        return report_;
    }

  private:
    void check(const Node& n) {
        switch (n.op) {
            case Op::Mul:
                checkProduct(n);
                markOperands(goesOn_, n);
                break;
            case Op::Add:
            case Op::Sub:
                if (isSingle_ && n.type == Type::F64) checkOpenSum(n);
                break;
            case Op::Narrow:
                if (!isExpression(n.a)) complain("a rounding of no expression");
                markOperands(narrowed_, n);
                break;
            case Op::MulScale:
                ++(n.type == Type::F32 ? report_.scaledInSingle : report_.scaledInDouble);
                break;
            case Op::Output:
                if (!isScaled(n.a)) complain("an output without its scale");
                break;
            default:
                break;
        }
    }
    void checkProduct(const Node& n) {
        const Real c = graph_.constant(n).lane(0).exact().value;
        if (c <= 0 || c == 1) complain("a product by a constant that is not positive, or 1");
        if (isSingle_ && n.type == Type::F32 && c != 2) complain("a product in binary32");
    }
    void checkOpenSum(const Node& n) {
        if (!isExpression(n.a) && !isExpression(n.b)) complain("a binary64 sum of binary32 values");
        if (graph_.node(n.a).op != Op::Zero) markOperands(goesOn_, n);
    }
    // The product by the scale, perhaps taken from zero, perhaps rounded; or a zero.
    bool isScaled(NodeId v) const {
        if (graph_.node(v).op == Op::Zero) return true;
        if (graph_.node(v).op == Op::Narrow) v = graph_.node(v).a;
        if (graph_.node(v).op == Op::Sub && graph_.node(graph_.node(v).a).op == Op::Zero)
            v = graph_.node(v).b;
        return graph_.node(v).op == Op::MulScale;
    }
    bool isExpression(NodeId id) const {
        const Node& n = graph_.node(id);
        return n.type == Type::F64 && n.op != Op::Widen && n.op != Op::Zero && n.op != Op::Scale;
    }
    void markOperands(std::vector<bool>& marks, const Node& n) {
        for (const NodeId id : {n.a, n.b})
            if (id != kNone) marks[static_cast<std::size_t>(id)] = true;
    }
    void complain(const char* what) { bad_ << "value " << at_ << ": " << what << "\n"; }

    const Graph& graph_;
    bool isSingle_;
    std::vector<bool> narrowed_, goesOn_;  // by value: rounded; taken by an expression that runs on
    std::size_t at_ = 0;
    PrecisionReport report_;
    std::ostringstream bad_;
};

}  // namespace

PrecisionReport checkPrecision(const Graph& graph) { return Precision(graph).report(); }

double scaleOf(Scaling scaling, int length, bool single) {
    const Real n = length;
    switch (scaling) {
        case Scaling::One:
            return 1.0;
        case Scaling::ByN:
            return single ? static_cast<double>(Real(1 / n).convert_to<float>()) : 1.0 / length;
        case Scaling::BySqrtN:
            return single ? static_cast<double>(Real(1 / sqrt(n)).convert_to<float>())
                          : 1.0 / std::sqrt(static_cast<double>(length));
    }
    return 0;
}

}  // namespace orvgen::test
