// SPDX-License-Identifier: MIT
#include "double_flow.h"

#include "double_plans.h"
#include "flows/flow.h"

namespace orvgen::dft {

using flows::Direction;
using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Value;
using plan::SumOrder;

namespace {

// Direct blocks take their pairs upwards. At two lengths both directions take the order of the
// forward sums, so that the inverse is the forward transform with real and imaginary parts
// exchanged, to the last bit.
SumOrder sumsOf(Direction direction, int n) {
    const bool isForward = direction == Direction::Forward || n == 23 || n == 29;
    return {.cosinePairs = SumOrder::Pairs::Ascending,
            .sinePairs = SumOrder::Pairs::Ascending,
            .sines = isForward ? SumOrder::Sines::PositiveFirst : SumOrder::Sines::NegativeFirst};
}

}  // namespace

Graph doubleFlow(Direction direction, int n) {
    Graph graph(Arithmetic::DoublePair);
    std::vector<Value> x;
    for (int t = 0; t < n; ++t) x.emplace_back(graph, graph.input(t));
    const flows::Sequence<Value> bins = flows::Flow<Value>(&graph, sumsOf(direction, n))
                                            .run(*doublePlans().plan(n), 1, flows::realNumbers(x));

    graph.stage("finish: y[k], y[N-k] = P +- i Q; scale and store");
    for (int k = 0; 2 * k <= n; ++k) {
        const auto& bin = bins[static_cast<std::size_t>(k)];
        const Value p = bin.re.formed();
        if (bin.im.isEmpty()) {
            graph.output(k, scaled(p).id());
            continue;
        }
        const Value q = bin.im.formed();
        const Value t = direction == Direction::Forward ? timesI(q) : timesMinusI(q);
        graph.output(k, scaled(p + t).id());
        graph.output(n - k, scaled(p - t).id());
    }
    return graph;
}

}  // namespace orvgen::dft
