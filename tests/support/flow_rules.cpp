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

PrecisionReport checkPrecision(const Graph& graph) {
    PrecisionReport report;
    std::ostringstream bad;
    const auto& nodes = graph.nodes();
    const bool single = graph.elementType() == Type::F32;
    std::vector<int> narrowed(nodes.size(), 0), goesOn(nodes.size(), 0);
    const auto isExpression = [&](NodeId id) {
        const Node& n = graph.node(id);
        return n.type == Type::F64 && n.op != Op::Widen && n.op != Op::Zero && n.op != Op::Scale;
    };
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Node& n = nodes[i];
        const auto complain = [&](const char* what) {
            bad << "value " << i << ": " << what << "\n";
        };
        const auto use = [&](std::vector<int>& uses) {
            for (const NodeId id : {n.a, n.b})
                if (id != kNone) ++uses[static_cast<std::size_t>(id)];
        };
        switch (n.op) {
            case Op::Mul: {
                const Real c = graph.constant(n).lane(0).exact().value;
                if (c <= 0 || c == 1)
                    complain("a product by a constant that is not positive, or 1");
                if (single && n.type == Type::F32 && c != 2) complain("a product in binary32");
                use(goesOn);
                break;
            }
            case Op::Add:
            case Op::Sub:
                if (single && n.type == Type::F64) {
                    if (!isExpression(n.a) && !isExpression(n.b))
                        complain("a binary64 sum of binary32 values");
                    if (graph.node(n.a).op != Op::Zero) use(goesOn);
                }
                break;
            case Op::Narrow:
                if (!isExpression(n.a)) complain("a rounding of no expression");
                use(narrowed);
                break;
            case Op::MulScale:
                ++(n.type == Type::F32 ? report.scaledInSingle : report.scaledInDouble);
                break;
            case Op::Output: {
                // the product by the scale, perhaps taken from zero, perhaps rounded; or a zero
                NodeId v = n.a;
                if (graph.node(v).op == Op::Zero) break;
                if (graph.node(v).op == Op::Narrow) v = graph.node(v).a;
                if (graph.node(v).op == Op::Sub && graph.node(graph.node(v).a).op == Op::Zero)
                    v = graph.node(v).b;
                if (graph.node(v).op != Op::MulScale) complain("an output without its scale");
                break;
            }
            default:
                break;
        }
    }
    for (std::size_t i = 0; i < nodes.size(); ++i)
        if (narrowed[i] > 0 && goesOn[i] > 0) ++report.carried;
    report.complaints = bad.str();
    return report;
}

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
